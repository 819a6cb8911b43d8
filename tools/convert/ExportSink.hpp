#pragma once

#include "tools/convert/OutputFormat.hpp"
#include "tools/recording/Recording.hpp"
#include "tools/recording/RowSink.hpp"

#include <cstdint>
#include <memory>
#include <string>

namespace SensorFileTool {

/// What a file is made of besides its rows.
struct ExportPlan {
    OutputFormat format = OutputFormat::kBinary;
    std::string path;                     ///< the file that is created or emptied
    SensorFile::SensorFileConfig config;  ///< of the rows
    std::uint64_t rowCount = 0;           ///< exact for formats that needRowCount()
    std::string encoding;                 ///< of the recording: "binary" or "text"
};

/// Whether a format has the number of rows in front of them.
[[nodiscard]] constexpr bool needRowCount(OutputFormat format) {
    return format == OutputFormat::kMat;
}

/// @throws Poco::Exception if the file cannot be made, if the program was built without the
///         format's library, or if the format cannot hold the rows
[[nodiscard]] std::unique_ptr<RowSink> makeExportSink(const ExportPlan& plan);

}  // namespace SensorFileTool
