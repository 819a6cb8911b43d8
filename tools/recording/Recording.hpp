#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "tools/common/InputFile.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace SensorFileTool {

/// The encoding that the user named, or nothing to find it out.
using EncodingChoice = std::optional<bool>;

/// Whether a file is binary: as given, or by its first bytes.
/// @throws Poco::FileException (or one derived) naming the file, if it cannot be read
/// @throws Poco::DataException naming the file, if it is no sensor file
[[nodiscard]] bool findEncoding(const InputFile& input, EncodingChoice binary);

/// A sensor file opened for reading, with what its bytes tell beside its sections. Despite the name
/// it may be a file of calibration records alone, which has no columns.
class Recording {
 public:
    /// @param binary  the encoding; found out from the first bytes if not given
    /// @throws Poco::FileException (or one derived) naming the file, if it cannot be read
    /// @throws Poco::DataException naming the file, if it is no sensor file
    explicit Recording(InputFile input, EncodingChoice binary = std::nullopt);

    /// For messages.
    [[nodiscard]] const std::string& getName() const { return input_.getName(); }
    [[nodiscard]] const std::string& getPath() const { return input_.getPath(); }
    [[nodiscard]] bool isBinary() const { return reader_.isBinary(); }
    [[nodiscard]] const SensorFile::SensorFileConfig& getConfig() const { return config_; }
    [[nodiscard]] SensorFile::SensorFileReader& getReader() { return reader_; }

    /// Bytes of the file when it was opened.
    [[nodiscard]] std::int64_t getSize() const { return size_; }
    /// Offset of the first row.
    [[nodiscard]] std::int64_t getDataStart() const { return dataStart_; }
    /// Bytes of a binary row; 0 without columns.
    [[nodiscard]] std::size_t getRowSize() const { return rowSize_; }

 private:
    InputFile input_;
    SensorFile::SensorFileReader reader_;
    SensorFile::SensorFileConfig config_;
    std::int64_t size_ = 0;
    std::int64_t dataStart_ = 0;
    std::size_t rowSize_ = 0;
};

/// @throws Poco::DataException naming the file, if it is one of calibrations alone
void requireRows(const Recording& recording);

}  // namespace SensorFileTool
