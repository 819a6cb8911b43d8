#pragma once

#include <string>
#include <vector>

namespace SensorFileTool {

/// What a recording can be turned into.
enum class OutputFormat {
    kBinary,     ///< a sensor file
    kText,       ///< a sensor file
    kCsv,        ///< see RowFormat
    kTsv,        ///< see RowFormat
    kJsonLines,  ///< see RowFormat
    kNpy,        ///< a structured array of NumPy
    kHdf5,       ///< a dataset a column
    kMat,        ///< a variable of MATLAB a column
};

/// The names by which the user can call the formats, "binary" and "text" first.
[[nodiscard]] const std::vector<std::string>& listOutputFormats();

/// @param name  one of listOutputFormats(), or empty to go by the ending
/// @param path  its ending in any case: .txt, .csv, .tsv, .jsonl (.ndjson), .npy, .h5 (.hdf5),
/// .mat;
///        all others are binary
/// @throws Poco::NotFoundException if there is no such name
[[nodiscard]] OutputFormat chooseOutputFormat(const std::string& name, const std::string& path);

/// Whether sensor files are made.
[[nodiscard]] constexpr bool isSensorFile(OutputFormat format) {
    return format == OutputFormat::kBinary || format == OutputFormat::kText;
}

/// Whether it holds rows and nothing else: neither dates nor calibration records.
[[nodiscard]] constexpr bool isRowsOnly(OutputFormat format) {
    return format == OutputFormat::kCsv || format == OutputFormat::kTsv ||
           format == OutputFormat::kJsonLines || format == OutputFormat::kNpy;
}

}  // namespace SensorFileTool
