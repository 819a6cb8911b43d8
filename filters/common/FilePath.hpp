#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/SensorFileWriter.hpp"

#include <string>

namespace Filters {

/// A path made absolute, relative to the current directory.
struct FilePath {
    std::string text;
    /// Whether it ends in a file name: "" and "folder/" do not. Nothing is said of existence.
    bool hasFileName = false;
};

/// @param file  with variables expanded already
[[nodiscard]] FilePath makeFilePath(const std::string& file);

/// Opens a writer on a file, which is created or emptied. A writer that is open stays as it is.
/// @param file  made absolute first
/// @throws Poco::IOException "File not found : " and the absolute path, if it names no file
/// @throws Poco::IOException "Problem while openning : " and the absolute path, if opening fails
void openWriter(SensorFile::SensorFileWriter& writer, const std::string& file,
                const SensorFile::SensorFileConfig& config, bool binary, bool writeHeaders);

}  // namespace Filters
