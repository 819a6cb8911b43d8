#pragma once

#include "fuzz/FileHarness.hpp"
#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/SensorFileReader.hpp"

#include <cstdint>
#include <vector>

namespace Fuzz {

/// A row as both forms hold it.
struct Row {
    std::vector<double> values;
    std::vector<std::uint64_t> bits;  ///< of columns of 64-bit integers; 0 otherwise
};

/// The column types that the next choices ask for: one to eight.
std::vector<int> chooseTypes(Input& input);

/// Reads all rows by each form and compares them with the ones expected: rows with and without the
/// exact 64-bit integers, value by value, as Var, and in columns of 64-bit integers as these.
/// The reader stands at the first row, there and in the end.
void requireRows(SensorFile::SensorFileReader& reader, const std::vector<Row>& expected);

/// Writes the rows and reads them again; if they come back otherwise, as text of few decimals makes
/// them, they are written once more, to the same bytes.
/// @return the rows that were read
std::vector<Row> writeAndReadAgain(const SensorFile::SensorFileConfig& config, bool binary,
                                   const std::vector<Row>& rows);

}  // namespace Fuzz
