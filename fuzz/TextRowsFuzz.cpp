/// Reads hostile rows of a text file, of columns of any type.
///
/// Beyond "no crash": every form of reading gives what a stream of the classic locale extracts (and
/// takes "nan" and "inf", which streams do not), rows are given as long as each value is closed by
/// a separator, and what was read can be written and read again without a change.

#include "fuzz/Harness.hpp"
#include "fuzz/RowHarness.hpp"
#include "sensorfile/ColumnType.hpp"

#include <array>
#include <cmath>
#include <concepts>
#include <limits>

namespace {

using Fuzz::MemoryStream;
using Fuzz::Row;
using SensorFile::SensorFileConfig;
using SensorFile::SensorFileReader;

/// The spellings of our writer, which streams do not read.
bool takeNonFinite(MemoryStream& in, double& value) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr std::array<std::pair<std::string_view, double>, 4> kWords = {
        {{"nan", kNan}, {"-nan", -kNan}, {"inf", kInfinity}, {"-inf", -kInfinity}}};
    in >> std::ws;
    for (const auto& [word, number] : kWords) {
        if (!in.unread().starts_with(word)) continue;
        in.skip(word.size());
        in.peek();
        value = number;
        return true;
    }
    return false;
}

/// One value, extracted by a stream; false if it is none or touches the end.
template <typename T>
bool extract(MemoryStream& in, double& value, std::uint64_t& bits) {
    T number{};
    if (std::floating_point<T> && takeNonFinite(in, value)) return in.good();
    in >> number;
    value = static_cast<double>(number);
    if constexpr (std::integral<T> && sizeof(T) == 8) bits = static_cast<std::uint64_t>(number);
    return in.good();
}

bool extractValue(MemoryStream& in, int typeCode, double& value, std::uint64_t& bits) {
    switch (typeCode) {
        case SensorFile::kUChar:
            return extract<unsigned char>(in, value, bits);
        case SensorFile::kChar:
            return extract<signed char>(in, value, bits);
        case SensorFile::kUShort:
        case SensorFile::kUInt16:
            return extract<std::uint16_t>(in, value, bits);
        case SensorFile::kShort:
        case SensorFile::kInt16:
            return extract<std::int16_t>(in, value, bits);
        case SensorFile::kUInt8:
        case SensorFile::kUInt32:
            return extract<std::uint32_t>(in, value, bits);
        case SensorFile::kInt8:
        case SensorFile::kInt32:
            return extract<std::int32_t>(in, value, bits);
        case SensorFile::kUInt64:
            return extract<std::uint64_t>(in, value, bits);
        case SensorFile::kInt64:
            return extract<std::int64_t>(in, value, bits);
        case SensorFile::kFloat:
            return extract<float>(in, value, bits);
        case SensorFile::kDouble:
            return extract<double>(in, value, bits);
        default:
            return extract<bool>(in, value, bits);
    }
}

std::vector<Row> rowsOf(const std::vector<int>& types, std::string_view samples) {
    MemoryStream in(samples);
    std::vector<Row> rows;
    for (;;) {
        Row row;
        for (const int type : types) {
            double value = 0;
            std::uint64_t bits = 0;
            if (!extractValue(in, type, value, bits)) return rows;
            row.values.push_back(value);
            row.bits.push_back(bits);
        }
        rows.push_back(row);
    }
}

/// 8-bit numbers are read as wider ones and written by their low bits; all others come back.
void requireSame(const std::vector<int>& types, const std::vector<Row>& rows,
                 const std::vector<Row>& again) {
    for (std::size_t column = 0; column < types.size(); ++column) {
        if (types[column] == SensorFile::kUInt8 || types[column] == SensorFile::kInt8) continue;
        for (std::size_t i = 0; i < rows.size(); ++i)
            Fuzz::require(Fuzz::isSame(again[i].values[column], rows[i].values[column]) &&
                              again[i].bits[column] == rows[i].bits[column],
                          "another value after writing");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input bytes(data, size);
    const unsigned choice = bytes.choice();
    Fuzz::setUp(choice);
    const std::vector<int> types = Fuzz::chooseTypes(bytes);
    SensorFileConfig config = Fuzz::configOf(types);
    // All decimals that a double can have, the usual ones, none.
    constexpr std::array<int, 4> kPrecisions = {1074, 5, 9, 0};
    const int precision = kPrecisions[choice >> 2 & 3];
    config.setDoublePrecision(precision);
    const std::vector<Row> rows = rowsOf(types, bytes.rest());
    static SensorFileReader reader;
    static Fuzz::ScratchFile file("input");
    file.put(Fuzz::sectionOf(config, false, Fuzz::Section::kHeader) +
             Fuzz::sectionOf(config, false, Fuzz::Section::kData) + std::string(bytes.rest()));
    reader.open(file.getPath(), /*binary=*/false);
    Fuzz::requireRows(reader, rows);
    const std::vector<Row> again = Fuzz::writeAndReadAgain(config, /*binary=*/false, rows);
    if (precision == kPrecisions[0]) requireSame(types, rows, again);
    return 0;
}
