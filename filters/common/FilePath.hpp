#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/SensorFileReader.hpp"
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

/// The absolute path of a file that is to be written.
/// @throws Poco::IOException "File not found : " and the absolute path, if it names no file
[[nodiscard]] std::string requireFileName(const std::string& file);

/// The absolute path of a file that is to be read.
/// @throws Poco::IOException as requireFileName, also if there is no such file
[[nodiscard]] std::string requireFile(const std::string& file);

/// Raised when a file to be replayed cannot be opened.
inline constexpr const char* kInvalidFile = "File not valid.";

/// Opens a reader on a file; one that is open is closed first.
/// @param file  made absolute first
/// @throws Poco::IOException "File not valid.", if it names no file or cannot be opened
/// @throws Poco::DataException as SensorFileReader::open(), if it is no sensor file of that
/// encoding After any exception the reader is closed.
void openReader(SensorFile::SensorFileReader& reader, const std::string& file, bool binary);

/// Opens a writer on a file, which is created or emptied. A writer that is open stays as it is.
/// @param file  made absolute first
/// @throws Poco::IOException "File not found : " and the absolute path, if it names no file
/// @throws Poco::IOException "Problem while openning : " and the absolute path, if opening fails
void openWriter(SensorFile::SensorFileWriter& writer, const std::string& file,
                const SensorFile::SensorFileConfig& config, bool binary, bool writeHeaders);

}  // namespace Filters
