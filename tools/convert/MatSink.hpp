#pragma once

#include "tools/check/ByteFile.hpp"
#include "tools/convert/ColumnBlock.hpp"
#include "tools/recording/RowSink.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Makes a MAT-file of level 5: a variable a column, besides "frequency", "created", "columns" (a
/// cell array: the variable, the column's name and type), "calibration" (a struct) and
/// "calibration_created". Each column is written where it will stand, block by block.
class MatSink : public RowSink {
 public:
    /// @param path  the file that is created or emptied
    /// @param rowCount  rows that will be written
    /// @throws Poco::DataException if a column is larger than the format can hold
    /// @throws as ByteFile
    MatSink(const std::string& path, const SensorFile::SensorFileConfig& config,
            std::uint64_t rowCount);

    void write(const Row& row) override;
    /// @throws Poco::DataException if there were fewer rows
    void finish() override;

 private:
    void placeColumns(const SensorFile::SensorFileConfig& config, std::uint64_t rowCount);
    void flush();

    ByteFile file_;
    ColumnBlock block_;
    std::vector<std::uint64_t> ends_;  ///< where each column's next value goes
    std::uint64_t rowsLeft_;
};

}  // namespace SensorFileTool
