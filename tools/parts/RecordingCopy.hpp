#pragma once

#include "sensorfile/SensorFileWriter.hpp"
#include "tools/recording/Recording.hpp"
#include "tools/recording/RowRange.hpp"

#include <cstdint>
#include <string>

namespace SensorFileTool {

/// Makes a recording of rows of others. Rows of the same encoding are copied as they stand, so that
/// no digit and no bit changes; little-endian rows and those of the other encoding are converted.
class RecordingCopy {
 public:
    /// @param path  the file that is created or emptied
    /// @param config  header, columns and calibration records
    /// @throws Poco::Exception as SensorFileWriter::open()
    RecordingCopy(const std::string& path, SensorFile::SensorFileConfig config, bool binary);

    /// @param source  with the same columns
    /// @return the number of rows that were there
    /// @throws Poco::Exception telling what cannot be read or written
    std::uint64_t append(Recording& source, const RowRange& range);
    /// The same for the next rows, from where the source stands on.
    std::uint64_t appendNext(Recording& source, std::uint64_t count);
    /// After the last row.
    void finish() { writer_.close(); }

 private:
    [[nodiscard]] bool isAsItStands(const Recording& source) const;
    std::uint64_t appendBytes(Recording& source, std::uint64_t count);
    std::uint64_t appendRows(Recording& source, std::uint64_t count);

    bool isBinary_;
    SensorFile::SensorFileWriter writer_;
};

}  // namespace SensorFileTool
