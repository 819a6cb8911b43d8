#include "fuzz/RowHarness.hpp"

#include "fuzz/Harness.hpp"
#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SensorFileWriter.hpp"

#include <span>

#include <Poco/Dynamic/Var.h>
#include <Poco/Exception.h>

namespace Fuzz {

using SensorFile::SensorFileConfig;
using SensorFile::SensorFileReader;
using SensorFile::SensorFileWriter;

namespace {

bool isWide(const SensorFileConfig& config, std::size_t column) {
    const int code = config.getColumn(column).getTypeCode();
    return code == SensorFile::kUInt64 || code == SensorFile::kInt64;
}

void requireEnd(SensorFileReader& reader, std::span<double> row) {
    require(!reader.readRow(row) && reader.isEof(), "a row behind the end");
    reader.rewind();
}

void requireByRows(SensorFileReader& reader, const SensorFileConfig& config,
                   const std::vector<Row>& expected) {
    std::vector<double> values(config.getColumnCount());
    std::vector<std::uint64_t> bits(config.getColumnCount());
    for (const Row& row : expected) {
        require(!reader.isEof(), "the end before a row");
        require(reader.readRow(values, bits), "too few rows");
        for (std::size_t i = 0; i < values.size(); ++i) {
            require(isSame(values[i], row.values[i]), "another value of a row");
            require(!isWide(config, i) || bits[i] == row.bits[i], "other bits of a row");
        }
    }
    requireEnd(reader, values);
    for (const Row& row : expected) {
        require(reader.readRow(values), "too few rows without bits");
        for (std::size_t i = 0; i < values.size(); ++i)
            require(isSame(values[i], row.values[i]), "another value of a row without bits");
    }
    requireEnd(reader, values);
}

/// What a column of 64-bit integers holds, in its own type.
void requireWide(SensorFileReader& reader, bool isSigned, std::uint64_t expected) {
    std::int64_t number = 0;
    std::uint64_t natural = 0;
    if (isSigned) {
        require(reader.read(&number, 1), "no integer");
        require(static_cast<std::uint64_t>(number) == expected, "another integer");
    } else {
        require(reader.read(&natural, 1), "no integer");
        require(natural == expected, "another integer");
    }
}

void requireByValues(SensorFileReader& reader, const SensorFileConfig& config,
                     const std::vector<Row>& expected) {
    for (std::size_t n = 0; n < expected.size(); ++n) {
        const Row& row = expected[n];
        for (std::size_t i = 0; i < row.values.size(); ++i) {
            if (n % 3 == 1 && isWide(config, i)) {
                requireWide(reader, config.getColumn(i).getTypeCode() == SensorFile::kInt64,
                            row.bits[i]);
            } else if (n % 3 == 2) {
                Poco::Dynamic::Var value;
                require(reader.readValue(value), "no value");
                require(isSame(value.convert<double>(), row.values[i]), "another Var");
            } else {
                double value = 0;
                require(reader.read(&value, 1), "no value");
                require(isSame(value, row.values[i]), "another value");
            }
        }
    }
}

/// Value by value into the rest, which holds no whole row.
void requireEndByValues(SensorFileReader& reader, std::size_t columns) {
    double value = 0;
    for (std::size_t i = 0; !reader.isEof(); ++i) {
        require(i <= columns, "more values than in a row");
        require(reader.read(&value, 1), "not even a value without meaning");
    }
}

void write(const std::string& path, const SensorFileConfig& config, bool binary,
           const std::vector<Row>& rows) {
    static SensorFileWriter writer;
    writer.open(path, config, binary, /*writeHeaders=*/true);
    writer.setTextRowsWaiting(true);
    for (const Row& row : rows)
        writer.writeRow(row.values, row.bits);
    writer.close();
}

std::vector<Row> readAll(const std::string& path, bool binary, std::size_t columns) {
    static SensorFileReader reader;
    reader.open(path, binary);
    std::vector<Row> rows;
    Row row{std::vector<double>(columns), std::vector<std::uint64_t>(columns)};
    while (reader.readRow(row.values, row.bits))
        rows.push_back(row);
    require(reader.isEof(), "reading ended before the end");
    reader.close();
    return rows;
}

bool areSame(const SensorFileConfig& config, const std::vector<Row>& a, const std::vector<Row>& b) {
    for (std::size_t column = 0; column < config.getColumnCount(); ++column) {
        const bool hasBits = isWide(config, column);
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (!isSame(a[i].values[column], b[i].values[column])) return false;
            if (hasBits && a[i].bits[column] != b[i].bits[column]) return false;
        }
    }
    return true;
}

}  // namespace

std::vector<int> chooseTypes(Input& input) {
    std::vector<int> types(1 + input.choice() % 8);
    for (int& type : types)
        type = kFirstType + static_cast<int>(input.choice()) % kTypeCount;
    return types;
}

void requireRows(SensorFileReader& reader, const std::vector<Row>& expected) {
    const SensorFileConfig config = reader.getConfig();
    requireByRows(reader, config, expected);
    requireByValues(reader, config, expected);
    requireEndByValues(reader, config.getColumnCount());
    reader.close();
}

std::vector<Row> writeAndReadAgain(const SensorFileConfig& config, bool binary,
                                   const std::vector<Row>& rows) {
    static ScratchFile copy("copy");
    if (rows.empty()) return {};
    write(copy.getPath(), config, binary, rows);
    std::vector<Row> again = readAll(copy.getPath(), binary, config.getColumnCount());
    require(again.size() == rows.size(), "rows are lost by writing");
    if (areSame(config, rows, again)) return again;  // and so would be what is written
    const std::string second = copy.get();
    write(copy.getPath(), config, binary, again);
    require(copy.get() == second, "written again it differs");
    return again;
}

}  // namespace Fuzz
