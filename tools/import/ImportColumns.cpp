#include "tools/import/ImportColumns.hpp"

#include "tools/common/UsageException.hpp"
#include "tools/recording/TypeOption.hpp"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

using Indexes = std::vector<std::size_t>;

std::vector<std::string> splitItems(const std::string& text) {
    std::vector<std::string> items;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(',', at), text.size());
        items.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return items;
}

template <typename Predicate>
Indexes indexesOf(const std::vector<CsvColumn>& columns, Predicate isMeant) {
    Indexes indexes;
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (isMeant(columns[i])) indexes.push_back(i);
    return indexes;
}

Indexes findColumns(const std::vector<CsvColumn>& columns, const std::string& text) {
    Indexes found =
        indexesOf(columns, [&](const CsvColumn& column) { return column.name == text; });
    if (found.empty())
        found =
            indexesOf(columns, [&](const CsvColumn& column) { return column.fieldName == text; });
    if (found.empty())
        found = indexesOf(columns, [&](const CsvColumn& column) {
            return std::to_string(column.field + 1) == text;
        });
    return found;
}

/// "NAME=REST" of which the name means columns.
struct Assignment {
    Indexes columns;
    std::string rest;
};

std::optional<Assignment> splitAssignment(const std::vector<CsvColumn>& columns,
                                          const std::string& item) {
    for (std::size_t at = item.find('='); at != std::string::npos; at = item.find('=', at + 1)) {
        Assignment assignment{findColumns(columns, item.substr(0, at)), item.substr(at + 1)};
        if (!assignment.columns.empty()) return assignment;
    }
    return std::nullopt;
}

[[noreturn]] void refuseName(const std::string& option, const std::vector<CsvColumn>& columns,
                             const std::string& item) {
    constexpr std::size_t kMaxNames = 100;
    std::string names;
    for (std::size_t i = 0; i < std::min(columns.size(), kMaxNames); ++i)
        names += (names.empty() ? "" : ", ") + shortenText(columns[i].name);
    if (columns.size() > kMaxNames) names += ", ...";
    throw UsageException(
        fmt::format("{}: '{}' means no column; there are: {}", option, item, names));
}

Assignment chosenColumns(const std::vector<CsvColumn>& columns, const std::string& item) {
    if (Indexes found = findColumns(columns, item); !found.empty()) return {std::move(found), ""};
    std::optional<Assignment> assignment = splitAssignment(columns, item);
    if (!assignment) refuseName("--columns", columns, item);
    if (!findColumnType(assignment->rest))
        throw UsageException(fmt::format("--columns: '{}' is no column type; types are {}",
                                         assignment->rest, listColumnTypes()));
    return *assignment;
}

std::vector<ImportColumn> chooseColumns(const std::vector<CsvColumn>& columns,
                                        const std::string& choice) {
    std::vector<ImportColumn> chosen;
    if (choice.empty()) {
        for (std::size_t i = 0; i < columns.size(); ++i)
            chosen.push_back({i, columns[i].name, std::nullopt});
        return chosen;
    }
    std::vector<bool> isTaken(columns.size());
    for (const std::string& item : splitItems(choice)) {
        const Assignment assignment = chosenColumns(columns, item);
        for (const std::size_t index : assignment.columns) {
            if (isTaken[index])
                throw UsageException("--columns: '" + columns[index].name + "' is named twice");
            isTaken[index] = true;
            chosen.push_back({index, columns[index].name, findColumnType(assignment.rest)});
        }
    }
    return chosen;
}

}  // namespace

std::vector<ImportColumn> chooseImportColumns(const std::vector<CsvColumn>& columns,
                                              const std::string& choice,
                                              const std::string& renaming) {
    std::vector<ImportColumn> chosen = chooseColumns(columns, choice);
    if (renaming.empty()) return chosen;
    for (const std::string& item : splitItems(renaming)) {
        const std::optional<Assignment> assignment = splitAssignment(columns, item);
        if (!assignment) refuseName("--rename", columns, item);
        const std::string name = withoutControls(assignment->rest);
        if (name.empty()) throw UsageException("--rename: '" + item + "' gives no new name");
        for (ImportColumn& column : chosen) {
            const std::size_t cell = column.cell;
            const Indexes& meant = assignment->columns;
            if (std::find(meant.begin(), meant.end(), cell) == meant.end()) continue;
            const bool isPart = columns[cell].element && meant.size() > 1;
            column.name = isPart ? elementName(name, *columns[cell].element) : name;
        }
    }
    return chosen;
}

}  // namespace SensorFileTool
