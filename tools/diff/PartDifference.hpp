#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "tools/diff/ValueDifference.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace SensorFileTool {

/// What two files say differently in front of their rows.
struct PartDifference {
    std::string part;  ///< "header", "column" or "calibration"
    std::string name;  ///< e.g. "frequency_hz", "ACCX", "AccGain(0,1)"
    std::string a;     ///< empty: there is none
    std::string b;
};

/// A column of either file, or of both: those of the same name belong together, the second of a
/// name with the second.
struct ColumnPair {
    std::string name;
    std::optional<std::size_t> a;
    std::optional<std::size_t> b;
};

/// First the columns of a, in their order, then those that b alone has.
/// @param patterns  as chooseColumns(), of the columns of both
/// @throws UsageException as chooseColumns()
[[nodiscard]] std::vector<ColumnPair> pairColumns(const SensorFile::SensorFileConfig& a,
                                                  const SensorFile::SensorFileConfig& b,
                                                  const std::string& patterns);

/// Frequency, kind of file, and the dates if they are wanted.
[[nodiscard]] std::vector<PartDifference> compareHeaders(const SensorFile::SensorFileConfig& a,
                                                         const SensorFile::SensorFileConfig& b,
                                                         const Tolerance& tolerance,
                                                         bool isWithDates);
/// Columns that one file lacks, other types, another order.
[[nodiscard]] std::vector<PartDifference> compareColumns(const SensorFile::SensorFileConfig& a,
                                                         const SensorFile::SensorFileConfig& b,
                                                         const std::vector<ColumnPair>& pairs);
/// Records of the same name belong together, in whatever order; every value that differs is told.
[[nodiscard]] std::vector<PartDifference> compareCalibrations(const SensorFile::SensorFileConfig& a,
                                                              const SensorFile::SensorFileConfig& b,
                                                              const Tolerance& tolerance);

}  // namespace SensorFileTool
