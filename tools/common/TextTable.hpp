#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Lines of cells below each other: the first column to the left, numbers to the right.
class TextTable {
 public:
    /// @param indent  blanks in front of every line
    TextTable(std::vector<std::string> titles, std::size_t indent);

    /// Of the titles.
    [[nodiscard]] std::size_t width() const { return rows_.front().size(); }
    /// @param cells  as many as there are titles; shown as Texts::toVisible tells
    void addRow(std::vector<std::string> cells);
    /// Titles and rows, each with a line end.
    [[nodiscard]] std::string toText() const;

 private:
    std::vector<std::vector<std::string>> rows_;
    std::size_t indent_;
};

}  // namespace SensorFileTool
