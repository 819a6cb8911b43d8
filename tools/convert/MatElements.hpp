#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <Eigen/Core>

/// Parts of a level 5 MAT-file, little-endian. See "MAT-File Format" of MathWorks, chapter 1.
namespace SensorFileTool::Mat {

/// What readers take: sizes are signed 32-bit numbers to them.
inline constexpr std::uint64_t kMaxElementSize = 0x7fff'ffff;

/// The first bytes of a file.
[[nodiscard]] std::string fileHeader();

/// Whole variables. An empty name is that of a member of something.
[[nodiscard]] std::string number(const std::string& name, double value);
/// @param text  in UTF-8
[[nodiscard]] std::string characters(const std::string& name, const std::string& text);
/// @param isInteger  32-bit integers instead of doubles
[[nodiscard]] std::string matrix(const std::string& name, const Eigen::MatrixXd& values,
                                 bool isInteger);
/// @param members  variables without names, column by column
[[nodiscard]] std::string cells(const std::string& name, std::size_t rows, std::size_t cols,
                                const std::vector<std::string>& members);
/// @param names  at most 63 characters each, with a variable without a name for each of them
[[nodiscard]] std::string structure(const std::string& name, const std::vector<std::string>& names,
                                    const std::vector<std::string>& members);

/// A variable that is a column: what is in front of its values, and how long everything is.
struct ColumnFrame {
    std::string head;
    std::uint64_t valueSize = 0;  ///< bytes of all values
    std::uint64_t size = 0;       ///< of the whole variable, a multiple of 8
    bool isTooLarge = false;      ///< for the format; the head is not to be used
};

/// @param typeCode  a column type
[[nodiscard]] ColumnFrame frameColumn(const std::string& name, int typeCode,
                                      std::uint64_t rowCount);

}  // namespace SensorFileTool::Mat
