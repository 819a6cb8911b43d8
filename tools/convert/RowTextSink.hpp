#pragma once

#include "tools/check/ByteFile.hpp"
#include "tools/recording/RowFormat.hpp"
#include "tools/recording/RowSink.hpp"

#include <string>

namespace SensorFileTool {

/// Makes a file of lines.
class RowTextSink : public RowSink {
 public:
    /// @param path  the file that is created or emptied
    /// @param config  all its columns are written
    /// @throws as ByteFile
    RowTextSink(const std::string& path, RowFormat format,
                const SensorFile::SensorFileConfig& config);

    void write(const Row& row) override;
    void finish() override;

 private:
    ByteFile file_;
    RowText format_;
    std::string text_;
};

}  // namespace SensorFileTool
