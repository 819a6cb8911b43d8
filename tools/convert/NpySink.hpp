#pragma once

#include "sensorfile/SensorFileConfig.hpp"
#include "tools/check/ByteFile.hpp"
#include "tools/recording/RowSink.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Makes a structured array of NumPy: a field a column, little-endian, packed.
class NpySink : public RowSink {
 public:
    /// @param path  the file that is created or emptied
    /// @throws Poco::DataException if there are no columns
    /// @throws as ByteFile
    NpySink(const std::string& path, const SensorFile::SensorFileConfig& config);

    void write(const Row& row) override;
    /// The number of rows is put where room was left for it.
    void finish() override;

 private:
    [[nodiscard]] std::string makeHeader(std::uint64_t rowCount) const;

    ByteFile file_;
    std::string fields_;  ///< the list of them as Python writes it
    std::vector<char> bytes_;
    std::uint64_t rowCount_ = 0;
};

}  // namespace SensorFileTool
