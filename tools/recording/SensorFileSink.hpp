#pragma once

#include "sensorfile/SensorFileWriter.hpp"
#include "tools/recording/RowSink.hpp"

#include <string>

namespace SensorFileTool {

/// Makes a sensor file.
class SensorFileSink : public RowSink {
 public:
    /// @param path  the file that is created or emptied
    /// @param config  with the header's date if it is not to be the present one; copies of a
    ///        recording keep its date
    /// @throws Poco::Exception as SensorFileWriter::open()
    SensorFileSink(const std::string& path, const SensorFile::SensorFileConfig& config,
                   bool binary);

    /// @throws Poco::RangeException if a value does not fit its column in text
    void write(const Row& row) override {
        if (row.hasWide())
            writer_.writeRow(row.values(), row.bits());
        else
            writer_.writeRow(row.values());
    }
    void finish() override { writer_.close(); }

 private:
    SensorFile::SensorFileWriter writer_;
};

}  // namespace SensorFileTool
