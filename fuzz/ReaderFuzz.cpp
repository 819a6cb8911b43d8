/// Reads a hostile sensor file. The first byte of the input chooses the encoding, the rest is the
/// file.
///
/// Beyond "no crash": the row form gives what the value form gives, every loop ends, and a file
/// that was read can be written and read again.

#include "fuzz/Harness.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"

#include <cstdint>
#include <string>
#include <vector>

#include <Poco/Exception.h>

namespace {

using SensorFile::SensorFileConfig;
using SensorFile::SensorFileReader;
using SensorFile::SensorFileWriter;

std::vector<std::vector<double>> readByRows(const std::string& path, bool binary) {
    SensorFileReader reader;
    reader.open(path, binary);
    std::vector<std::vector<double>> rows;
    const std::size_t columns = reader.getConfig().getColumnCount();
    if (columns == 0) return rows;
    std::vector<double> row(columns);
    while (reader.readRow(row))
        rows.push_back(row);
    Fuzz::require(reader.isEof(), "reading ended before the end");
    return rows;
}

void compareWithValues(const std::string& path, bool binary,
                       const std::vector<std::vector<double>>& rows) {
    SensorFileReader reader;
    reader.open(path, binary);
    for (const std::vector<double>& row : rows) {
        for (const double expected : row) {
            double value = 0.0;
            Fuzz::require(reader.read(&value, 1), "a value less than by rows");
            Fuzz::require(Fuzz::isSame(value, expected), "another value than by rows");
        }
    }
}

void writeAndReadAgain(const SensorFileConfig& config,
                       const std::vector<std::vector<double>>& rows) {
    const std::string path = Fuzz::scratchPath("copy");
    SensorFileWriter writer;
    writer.open(path, config, true, true);
    for (const std::vector<double>& row : rows)
        writer.writeRow(row);
    writer.close();
    Fuzz::require(readByRows(path, true).size() == rows.size(), "rows are lost by writing");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const bool binary = (data[0] & 1) != 0;
    const std::string path = Fuzz::scratchPath("input");
    Fuzz::writeFile(path, Fuzz::toText(data + 1, size - 1));
    try {
        const std::vector<std::vector<double>> rows = readByRows(path, binary);
        compareWithValues(path, binary, rows);
        SensorFileReader reader;
        reader.open(path, binary);
        const SensorFileConfig config = reader.getConfig();
        if (config.getColumnCount() > 0) writeAndReadAgain(config, rows);
    } catch (const Poco::Exception&) {
        // A refused file is an answer.
    }
    return 0;
}
