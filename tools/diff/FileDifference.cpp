#include "tools/diff/FileDifference.hpp"

#include "text/VisibleText.hpp"
#include "tools/common/JsonValue.hpp"
#include "tools/common/TextTable.hpp"
#include "tools/recording/ValueText.hpp"

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr std::size_t kIndent = 2;

std::string orNone(const std::string& text) {
    return text.empty() ? "none" : text;
}

std::string line(const std::string& label, const std::string& text) {
    return fmt::format("  {:<13}{}\n", label, Texts::toVisible(text));
}

std::string describeFirst(const FirstDifference& first) {
    return fmt::format("row {}, column {}: {} | {}", first.row, first.column.name,
                       valueText(first.a, *first.column.a), valueText(first.b, *first.column.b));
}

std::string describeRest(const Rest& rest) {
    if (rest.size == 0) return "none";
    return fmt::format("{} byte(s) ({} whole value(s))", rest.size, rest.valueCount);
}

std::string tableOf(const std::vector<ColumnTally>& columns) {
    TextTable table({"column", "different", "first row", "largest difference", "at row"}, kIndent);
    for (const ColumnTally& column : columns)
        if (column.different > 0)
            table.addRow({column.name, fmt::format("{}", column.different),
                          fmt::format("{}", column.firstRow), fmt::format("{:.6g}", column.largest),
                          fmt::format("{}", column.largestRow)});
    return table.toText();
}

Json orNull(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

Json partsOf(const FileDifference& difference) {
    Json list = Json::array();
    for (const PartDifference& part : difference.parts)
        list.push_back({{"part", part.part},
                        {"name", part.name},
                        {"a", orNull(part.a)},
                        {"b", orNull(part.b)}});
    return list;
}

Json firstOf(const std::optional<FirstDifference>& first) {
    if (!first) return nullptr;
    return {{"row", jsonInteger(first->row)},
            {"column", first->column.name},
            {"a", jsonValue(first->a, *first->column.a)},
            {"b", jsonValue(first->b, *first->column.b)}};
}

Json columnsOf(const std::vector<ColumnTally>& columns) {
    Json list = Json::array();
    for (const ColumnTally& column : columns) {
        Json one{{"name", column.name}, {"different", jsonInteger(column.different)}};
        const bool isAny = column.different > 0;
        one["first_row"] = isAny ? jsonInteger(column.firstRow) : Json(nullptr);
        one["largest_difference"] = jsonNumber(column.largest);
        one["largest_row"] = isAny ? jsonInteger(column.largestRow) : Json(nullptr);
        list.push_back(one);
    }
    return list;
}

Json fileOf(const std::string& name, std::uint64_t rows, const Rest& rest) {
    return {{"path", name},
            {"rows", jsonInteger(rows)},
            {"trailing_bytes", jsonInteger(static_cast<std::uint64_t>(rest.size))},
            {"trailing_values", jsonInteger(rest.valueCount)}};
}

}  // namespace

std::string nameBoth(const FileDifference& difference) {
    return Texts::toVisible(difference.nameA + " and " + difference.nameB);
}

std::string differenceToText(const FileDifference& difference) {
    const RowDifferences& rows = difference.rows;
    std::string text = nameBoth(difference) + " differ\n";
    for (const PartDifference& part : difference.parts)
        text += line(part.part, part.name + ": " + orNone(part.a) + " | " + orNone(part.b));
    if (rows.rowsA != rows.rowsB)
        text += line("rows", fmt::format("{} | {}", rows.rowsA, rows.rowsB));
    if (difference.restA.size > 0 || difference.restB.size > 0)
        text += line("cut row",
                     describeRest(difference.restA) + " | " + describeRest(difference.restB));
    if (!rows.first) return text;
    text += line("first value", describeFirst(*rows.first));
    return text + line("compared", fmt::format("{} row(s)", rows.compared)) + '\n' +
           tableOf(rows.columns);
}

std::string differenceToJson(const FileDifference& difference) {
    const RowDifferences& rows = difference.rows;
    return jsonLine({{"schema", "sensorfile-diff-1"},
                     {"same", difference.isSame()},
                     {"a", fileOf(difference.nameA, rows.rowsA, difference.restA)},
                     {"b", fileOf(difference.nameB, rows.rowsB, difference.restB)},
                     {"tolerance", jsonNumber(difference.tolerance.absolute)},
                     {"relative", jsonNumber(difference.tolerance.relative)},
                     {"parts", partsOf(difference)},
                     {"rows_compared", jsonInteger(rows.compared)},
                     {"first_difference", firstOf(rows.first)},
                     {"columns", columnsOf(rows.columns)}});
}

}  // namespace SensorFileTool
