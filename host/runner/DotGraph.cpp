#include "host/runner/DotGraph.hpp"

#include "text/VisibleText.hpp"

#include <fmt/format.h>

namespace Quoril::Runner {

namespace {
std::string quote(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : Texts::toVisible(text)) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

/// Two texts in two lines; DOT writes the break as \n.
std::string quoteLines(const std::string& first, const std::string& second) {
    std::string lines = quote(first);
    lines.pop_back();
    return lines + "\\n" + quote(second).substr(1);
}

std::string describeBuffer(const ConnectionEntry& connection) {
    std::string text;
    if (connection.bufferSize) text += fmt::format("buffer {}", *connection.bufferSize);
    if (connection.isLifo.value_or(false)) text += text.empty() ? "lifo" : ", lifo";
    return text;
}

std::string makeEdge(const ConnectionEntry& connection) {
    const std::string pins = connection.from.member + " -> " + connection.to.member;
    const std::string buffer = describeBuffer(connection);
    return fmt::format("  {} -> {} [label={}];\n", quote(connection.from.filter),
                       quote(connection.to.filter),
                       buffer.empty() ? quote(pins) : quoteLines(pins, buffer));
}
}  // namespace

std::string makeDotGraph(const FlowModel& model) {
    std::string dot = "digraph flow {\n  rankdir=LR;\n  node [shape=box];\n";
    for (std::size_t i = 0; i < model.layouts.size(); ++i) {
        const std::string& layout = model.layouts[i].name.text;
        dot += fmt::format("  subgraph cluster_{} {{\n    label={};\n", i, quote(layout));
        for (const FilterEntry& filter : model.filters)
            if (model.getLayoutOf(filter) == layout)
                dot += fmt::format("    {} [label={}];\n", quote(filter.name.text),
                                   quoteLines(filter.name.text, filter.className.text));
        dot += "  }\n";
    }
    for (const ConnectionEntry& connection : model.connections)
        dot += makeEdge(connection);
    return dot + "}\n";
}

}  // namespace Quoril::Runner
