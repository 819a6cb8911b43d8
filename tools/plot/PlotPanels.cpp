#include "tools/plot/PlotPanels.hpp"

#include "sensorfile/ColumnType.hpp"
#include "tools/recording/CounterColumn.hpp"
#include "tools/recording/TimeColumn.hpp"

#include <algorithm>
#include <array>
#include <string_view>

#include <Poco/String.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kAxes = "XYZWxyzw";
constexpr std::string_view kSeparators = " _-.:";

void trimEnd(std::string_view& text, std::string_view characters) {
    text = text.substr(0, text.find_last_not_of(characters) + 1);
}

/// The unit in brackets at a name's end, with the brackets; taken off the name.
std::string_view takeUnit(std::string_view& name) {
    if (name.empty() || (name.back() != ')' && name.back() != ']')) return {};
    const std::size_t start = name.rfind(name.back() == ')' ? '(' : '[');
    if (start == std::string_view::npos || start == 0) return {};
    const std::string_view unit = name.substr(start);
    name = name.substr(0, start);
    trimEnd(name, kSeparators);
    return unit;
}

/// What a column has in common with the others of its sensor; the name itself if it says of none.
std::string titleOf(const std::string& column) {
    std::string_view name = column;
    const std::string_view unit = takeUnit(name);
    std::string_view prefix = name;
    trimEnd(prefix, kDigits);
    if (prefix.size() == name.size() && !name.empty() &&
        kAxes.find(name.back()) != std::string_view::npos)
        prefix.remove_suffix(1);
    if (prefix.size() == name.size()) return column;
    trimEnd(prefix, kSeparators);
    std::string title(prefix);
    if (!title.empty() && !unit.empty()) title += ' ';
    title += unit;
    return title;
}

template <typename Columns>
bool holds(const Columns& columns, std::size_t index) {
    return std::any_of(columns.begin(), columns.end(),
                       [index](const auto& column) { return column.index == index; });
}

/// Whether a column only accompanies measurements.
bool isCompanion(const SensorFile::SensorFileConfig& config, std::size_t index) {
    constexpr std::array kNames = {"INFO",  "STATUS", "STATE", "FLAG",  "FLAGS",
                                   "ERROR", "ERRORS", "EVENT", "MARKER"};
    const SensorFile::Column& column = config.getColumn(index);
    const int type = column.getTypeCode();
    return type == SensorFile::kBool || type == SensorFile::kUChar || type == SensorFile::kChar ||
           std::find(kNames.begin(), kNames.end(), Poco::toUpper(column.getName())) !=
               kNames.end() ||
           holds(findCounterColumns(config), index) || holds(findTimeColumns(config), index);
}

std::vector<PlotPanel> groupByTitle(const SensorFile::SensorFileConfig& config,
                                    const std::vector<std::size_t>& columns) {
    std::vector<PlotPanel> panels;
    for (const std::size_t column : columns) {
        const std::string title = titleOf(config.getColumn(column).getName());
        const auto panel =
            std::find_if(panels.begin(), panels.end(),
                         [&title](const PlotPanel& one) { return one.title == title; });
        if (panel == panels.end())
            panels.push_back({title, {column}});
        else
            panel->columns.push_back(column);
    }
    return panels;
}

/// A column that nothing shares its panel with keeps its whole name; columns named by an axis or
/// a number alone are told by all their names.
void nameAgain(PlotPanel& panel, const SensorFile::SensorFileConfig& config) {
    const std::string& first = config.getColumn(panel.columns.front()).getName();
    if (panel.columns.size() == 1)
        panel.title = first;
    else if (panel.title.empty())
        panel.title =
            fmt::format("{} ... {}", first, config.getColumn(panel.columns.back()).getName());
}

}  // namespace

std::vector<PlotPanel> groupColumns(const SensorFile::SensorFileConfig& config,
                                    const std::vector<std::size_t>& columns) {
    std::vector<std::size_t> measurements;
    std::vector<std::size_t> companions;
    for (const std::size_t column : columns)
        (isCompanion(config, column) ? companions : measurements).push_back(column);
    std::vector<PlotPanel> panels = groupByTitle(config, measurements);
    for (PlotPanel& panel : groupByTitle(config, companions))
        panels.push_back(std::move(panel));
    for (PlotPanel& panel : panels)
        nameAgain(panel, config);
    return panels;
}

}  // namespace SensorFileTool
