#pragma once

#include "sensorfile/InputBlock.hpp"
#include "tools/check/BlockWriter.hpp"
#include "tools/check/Recovery.hpp"
#include "tools/check/TextRowScanner.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace SensorFileTool {

/// Writes the whole parts of a file, mended where that is known how, and keeps account of it.
class RecoveryWriter {
 public:
    /// @param recovery  with the report of the file; gets what is dropped and mended. Must outlive
    ///        this
    RecoveryWriter(const std::string& inPath, const std::string& outPath, Recovery& recovery);

    /// All bytes as they are.
    void copy();
    void writeSections();
    /// @param zeroRows  what becomes of the rows of zeros at the end
    void writeBinaryRows(ZeroRows zeroRows);
    void writeTextRows();
    /// After all else.
    void finish() { out_.close(); }

 private:
    void copyRange(std::int64_t begin, std::int64_t end);
    void copyPatched(std::int64_t begin, std::int64_t end);
    void writeRow(const TextRow& row);
    void writeLine(const TextRow& row);
    void dropRow(const TextRow& row);
    void drop(DefectCode code, const Place& place, std::int64_t rows, std::int64_t bytes);
    void mend(const std::string& what, const Place& place);

    const SectionMap& map_;
    Recovery& recovery_;
    std::string inPath_;
    SensorFile::InputBlock in_;
    BlockWriter out_;
};

}  // namespace SensorFileTool
