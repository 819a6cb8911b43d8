#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

/// What is written and read: two recordings of an inertial sensor, one in each encoding. The rows
/// come round in a cycle that stays in the processor's cache, so that no way waits for memory.
namespace Bench {

/// Columns of the binary recording: uint16, 9 × int16, uint8.
inline constexpr std::size_t kBinaryColumns = 11;
inline constexpr std::size_t kBinaryRowBytes = 21;
inline constexpr std::size_t kBinaryRows = 2'000'000;
using BinaryRow = std::array<double, kBinaryColumns>;

/// Columns of the text recording: a time in s, acceleration in m/s² and turn rate in rad/s.
inline constexpr std::size_t kTextColumns = 7;
inline constexpr std::size_t kTextRows = 500'000;
inline constexpr int kTextDecimals = 6;
using TextRow = std::array<double, kTextColumns>;

/// A power of two: row i of a recording is row i % kCycle.
inline constexpr std::size_t kCycle = 1024;

const std::array<BinaryRow, kCycle>& binaryRows();
const std::array<TextRow, kCycle>& textRows();

/// The text rows as they stand in a file: kTextDecimals decimals without trailing zeros, a tab
/// after each value, a line feed after each row.
const std::vector<std::string>& textLines();

}  // namespace Bench
