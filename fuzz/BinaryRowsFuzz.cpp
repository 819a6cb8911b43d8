/// Reads hostile rows of a binary file, of columns of any type, in either order of bytes.
///
/// Beyond "no crash": every form of reading gives what a plain look at the bytes gives, a torn row
/// is given up, going to a row is reading on to it, and what was read can be written and read again
/// without a change.

#include "fuzz/Harness.hpp"
#include "fuzz/RowHarness.hpp"
#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SectionFormat.hpp"

#include <bit>

namespace {

using Fuzz::Row;
using SensorFile::SensorFileConfig;
using SensorFile::SensorFileReader;

struct Case {
    std::vector<int> types;
    bool isBigEndian;
    unsigned seekChoice;
    std::string_view samples;
};

std::string fileOf(const Case& input, const SensorFileConfig& config) {
    return Fuzz::sectionOf(config, true, Fuzz::Section::kHeader) +
           Fuzz::binaryOpening(SensorFile::kDataId, SensorFile::kDefaultDataVersion,
                               input.isBigEndian) +
           std::string(input.samples);
}

std::uint64_t bitsAt(std::string_view bytes, bool isBigEndian) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bits =
            bits << 8 | static_cast<unsigned char>(bytes[isBigEndian ? i : bytes.size() - 1 - i]);
    return bits;
}

double valueOf(int typeCode, std::uint64_t bits) {
    switch (typeCode) {
        case SensorFile::kChar:
        case SensorFile::kInt8:
            return static_cast<std::int8_t>(bits);
        case SensorFile::kShort:
        case SensorFile::kInt16:
            return static_cast<std::int16_t>(bits);
        case SensorFile::kInt32:
            return static_cast<std::int32_t>(bits);
        case SensorFile::kInt64:
            return static_cast<double>(static_cast<std::int64_t>(bits));
        case SensorFile::kFloat:
            return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        case SensorFile::kDouble:
            return std::bit_cast<double>(bits);
        case SensorFile::kBool:
            return static_cast<double>(bits % 2);
        default:
            return static_cast<double>(bits);
    }
}

std::vector<Row> rowsOf(const Case& input) {
    std::vector<Row> rows;
    for (std::size_t at = 0; at < input.samples.size();) {
        Row row;
        for (const int type : input.types) {
            const std::size_t size = SensorFile::columnTypeSize(type);
            if (input.samples.size() - at < size) return rows;
            const std::uint64_t bits = bitsAt(input.samples.substr(at, size), input.isBigEndian);
            row.values.push_back(valueOf(type, bits));
            row.bits.push_back(bits);
            at += size;
        }
        rows.push_back(row);
    }
    return rows;
}

/// From the end to the start, from row to row by an odd step, and behind the end.
void seekAbout(SensorFileReader& reader, const Case& input, const std::vector<Row>& rows) {
    std::vector<double> values(input.types.size());
    std::size_t target = rows.size();
    for (int i = 0; i < 8; ++i) {
        reader.seekRow(target);
        const bool isThere = target < rows.size();
        Fuzz::require(reader.readRow(values) == isThere, "a row that is not there, or none");
        Fuzz::require(reader.isEof() != isThere, "the end within the rows, or none");
        for (std::size_t column = 0; isThere && column < values.size(); ++column)
            Fuzz::require(Fuzz::isSame(values[column], rows[target].values[column]),
                          "another value after going to a row");
        target = (target + 1 + input.seekChoice) % (rows.size() + 2);
    }
    reader.seekRow(0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input bytes(data, size);
    const unsigned choice = bytes.choice();
    Fuzz::setUp(choice);
    const std::vector<int> types = Fuzz::chooseTypes(bytes);
    const Case input{types, (choice & 4) == 0, choice >> 3, bytes.rest()};
    const SensorFileConfig config = Fuzz::configOf(types);
    const std::vector<Row> rows = rowsOf(input);
    static SensorFileReader reader;
    static Fuzz::ScratchFile file("input");
    file.put(fileOf(input, config));
    reader.open(file.getPath(), /*binary=*/true);
    seekAbout(reader, input, rows);
    Fuzz::requireRows(reader, rows);
    const std::vector<Row> again = Fuzz::writeAndReadAgain(config, /*binary=*/true, rows);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t column = 0; column < types.size(); ++column)
            Fuzz::require(Fuzz::isSame(again[i].values[column], rows[i].values[column]),
                          "another value after writing");
    }
    return 0;
}
