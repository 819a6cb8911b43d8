#pragma once

#include "sensorfile/SectionDate.hpp"
#include "sensorfile/SectionOpening.hpp"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>

namespace SensorFile {

class SensorFileConfig;

/// Reads the sections of a text file into a configuration. Labels are skipped as words, so that
/// their wording does not matter. Neither the stream's locale nor its format flags matter.
/// Nothing is allocated on the word of a count: values are taken one after the other until the
/// data end.
class TextSectionReader {
 public:
    /// Both must outlive this.
    TextSectionReader(std::istream& stream, SensorFileConfig& config)
        : stream_(stream), config_(config) {}

    /// An id of 0 when there is no opening.
    SectionOpening readOpening();
    /// @throws FormatException, Poco::DataException as SensorFileConfig::readColumns()
    void readHeader();
    /// @throws FormatException, Poco::DataException as SensorFileConfig::readCalibSection()
    void readCalib();

 private:
    int peek();
    void skip();
    void skipBlanks();
    void skipWords(int count);
    void expect(char wanted);
    std::string takeWord();
    std::string takeNumberWord();
    std::string takeField();
    std::int64_t takeInteger(const char* what);
    int takeDatePart();
    template <typename T>
    T takeNumber(const char* what);
    SectionDate takeDate();
    void readRecord();
    template <typename T>
    void readMatrix(const std::string& name, std::int64_t rows, std::int64_t cols);
    void readBareValues();

    std::istream& stream_;
    SensorFileConfig& config_;
};

}  // namespace SensorFile
