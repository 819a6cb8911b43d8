#include "tools/plot/PlotPage.hpp"

#include <ostream>
#include <stdexcept>

#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

void writeEscaped(std::ostream& output, std::string_view text) {
    for (const char letter : text) {
        if (letter == '<')
            output << "&lt;";
        else if (letter == '&')
            output << "&amp;";
        else
            output << letter;
    }
}

void writePart(const std::string_view name, const Plot& plot, const PlotAssets& assets,
               std::ostream& output) {
    if (name == "UPLOT_STYLE")
        output << assets.uplotStyle;
    else if (name == "STYLE")
        output << assets.style;
    else if (name == "RECORDING")
        writePlotJson(plot, output);
    else if (name == "UPLOT_SCRIPT")
        output << assets.uplotScript;
    else if (name == "SCRIPT")
        output << assets.script;
    else if (name == "UPLOT_LICENCE")
        writeEscaped(output, assets.uplotLicence);
    else
        throw Poco::NotFoundException("the page has no part '" + std::string(name) + "'");
}

}  // namespace

void writePlotPage(const Plot& plot, const PlotAssets& assets, std::ostream& output) {
    std::string_view rest = assets.page;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size() - 1);
        const std::string_view line = rest.substr(0, end);
        if (line.size() > 2 && line.front() == '@' && line.back() == '@')
            writePart(line.substr(1, line.size() - 2), plot, assets, output);
        else
            output << line;
        output << '\n';
        rest.remove_prefix(end + 1);
    }
}

}  // namespace SensorFileTool
