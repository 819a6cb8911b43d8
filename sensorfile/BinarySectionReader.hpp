#pragma once

#include "sensorfile/SectionDate.hpp"
#include "sensorfile/SectionOpening.hpp"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>

namespace SensorFile {

class SensorFileConfig;

/// Reads the sections of a binary file into a configuration, whose byte order it follows and turns.
/// Nothing is allocated on the word of a count: values are taken one after the other until the
/// data end.
class BinarySectionReader {
 public:
    /// Both must outlive this.
    BinarySectionReader(std::istream& stream, SensorFileConfig& config)
        : stream_(stream), config_(config) {}

    /// An id of 0 when there is no opening; the byte order turns when the first word asks for it.
    SectionOpening readOpening();
    /// @return false when a column record has an impossible size
    /// @throws FormatException, Poco::DataException as SensorFileConfig::readColumns()
    bool readHeader();
    /// @throws FormatException, Poco::DataException as SensorFileConfig::readCalibSection()
    void readCalib();

 private:
    template <typename T>
    T take();
    int takeByte();
    double takeCodedDouble();
    std::string takeName();
    SectionDate takeDate(bool isCoded);
    void readRecord();
    template <typename T>
    void readMatrix(const std::string& name);
    void readBareValues(std::uint64_t sectionSize);
    bool takeBytes(char* bytes, std::size_t count);

    std::istream& stream_;
    SensorFileConfig& config_;
};

}  // namespace SensorFile
