#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "sensorfile/ValueCast.hpp"
#include "tests/sensorfile/AllocationCount.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <bit>
#include <cmath>
#include <locale>
#include <sstream>

#include <Poco/BinaryReader.h>
#include <Poco/BinaryWriter.h>
#include <Poco/Exception.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

// Random configurations and values: the row forms against values one by one, both against the
// plain way with Poco::BinaryWriter, Poco::Dynamic::Var and string streams.

namespace SensorFile {
namespace {

using Poco::Dynamic::Var;
using Rows = std::vector<std::vector<double>>;

rc::Gen<double> anyDouble() {
    return rc::gen::oneOf(
        rc::gen::map(rc::gen::arbitrary<std::uint64_t>(),
                     [](std::uint64_t bits) { return std::bit_cast<double>(bits); }),
        rc::gen::map(rc::gen::inRange(-70'000'000, 70'000'000), [](int n) { return n / 1000.0; }),
        rc::gen::map(rc::gen::inRange(-300, 300), [](int n) { return double(n); }),
        rc::gen::element(0.0, -0.0, 32767.5, -32768.0, -32768.9, 65535.9, -0.9, 2147483648.0,
                         0x1p63, -0x1p63, 0x1p64, 1e300, std::nan(""), INFINITY, -INFINITY));
}

rc::Gen<std::vector<int>> anyColumns() {
    return rc::gen::mapcat(rc::gen::inRange<std::size_t>(1, 24), [](std::size_t count) {
        return rc::gen::container<std::vector<int>>(count, rc::gen::elementOf(kAllTypeCodes));
    });
}

rc::Gen<Rows> anyRows(std::size_t columns, rc::Gen<double> value) {
    return rc::gen::mapcat(rc::gen::inRange<std::size_t>(0, 12), [=](std::size_t count) {
        return rc::gen::container<Rows>(count,
                                        rc::gen::container<std::vector<double>>(columns, value));
    });
}

/// The file that rows make, without its opening.
class Recorder {
 public:
    Recorder(const SensorFileConfig& config, bool binary)
        : openingSize_(openingOf(config, binary).size()) {
        writer.open(file_.path(), config, binary, true);
    }
    std::string samples() {
        writer.close();
        return file_.content().substr(openingSize_);
    }

    SensorFileWriter writer;

 private:
    TemporaryFile file_;
    std::size_t openingSize_;
};

std::string samplesByRow(const SensorFileConfig& config, bool binary, const Rows& rows) {
    Recorder recorder(config, binary);
    for (const auto& row : rows) {
        try {
            recorder.writer.writeRow(row);
        } catch (const Poco::RangeException&) {
            continue;
        }
    }
    return recorder.samples();
}

std::string samplesByValue(const SensorFileConfig& config, bool binary, const Rows& rows) {
    Recorder recorder(config, binary);
    for (const auto& row : rows) {
        try {
            for (const double value : row)
                recorder.writer.write(value);
        } catch (const Poco::RangeException&) {
            continue;
        }
    }
    return recorder.samples();
}

/// The plain way: a conversion and an insertion for every value.
std::string plainBinary(const SensorFileConfig& config, const Rows& rows) {
    std::ostringstream out;
    Poco::BinaryWriter writer(out, Poco::BinaryWriter::BIG_ENDIAN_BYTE_ORDER);
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            switch (config.getColumn(i).getTypeCode()) {
                case 8:
                    writer << static_cast<float>(row[i]);
                    break;
                case 9:
                    writer << row[i];
                    break;
                case 10:
                    writer << static_cast<Poco::UInt8>(row[i] != 0 ? 1 : 0);
                    break;
                default: {
                    const auto bits = lowBits(row[i]);
                    const std::size_t size = config.getColumn(i).getSize();
                    if (size == 1) writer << static_cast<Poco::UInt8>(bits);
                    if (size == 2) writer << static_cast<Poco::UInt16>(bits);
                    if (size == 4) writer << static_cast<Poco::UInt32>(bits);
                    if (size == 8) writer << static_cast<Poco::UInt64>(bits);
                }
            }
        }
    }
    return out.str();
}

std::string plainText(const SensorFileConfig& config, const Rows& rows) {
    SensorFileWriter formatter;
    const TemporaryFile file;
    formatter.open(file.path(), config, false, false);
    std::string out;
    for (const auto& row : rows) {
        std::string line;
        try {
            for (std::size_t i = 0; i < row.size(); ++i) {
                line += formatter.formatValue(i, Var(row[i]), false) + "\t";
            }
        } catch (const Poco::RangeException&) {
            continue;
        }
        out += line + "\n";
    }
    return out;
}

RC_GTEST_PROP(RowRoundTripTest, BinaryRowsValuesAndThePlainWayGiveTheSameBytes, ()) {
    const auto config = configOfTypes(*anyColumns());
    const auto rows = *anyRows(config.getColumnCount(), anyDouble());
    const std::string expected = hexOf(plainBinary(config, rows));
    RC_ASSERT(hexOf(samplesByRow(config, true, rows)) == expected);
    RC_ASSERT(hexOf(samplesByValue(config, true, rows)) == expected);
}

RC_GTEST_PROP(RowRoundTripTest, TextRowsValuesAndThePlainWayGiveTheSameText, ()) {
    auto config = configOfTypes(*anyColumns());
    config.setDoublePrecision(*rc::gen::inRange(-1, 30));
    const auto rows = *anyRows(config.getColumnCount(), anyDouble());
    const std::string expected = plainText(config, rows);
    RC_ASSERT(samplesByRow(config, false, rows) == expected);
    RC_ASSERT(samplesByValue(config, false, rows) == expected);
}

/// Rows of a file by one of the reader's ways.
template <typename Next>
Rows rowsOf(const TemporaryFile& file, bool binary, Next next) {
    SensorFileReader reader;
    reader.open(file.path(), binary);
    std::vector<double> row(reader.getConfig().getColumnCount());
    Rows rows;
    while (next(reader, row))
        rows.push_back(row);
    RC_ASSERT(reader.isEof());
    return rows;
}

bool byRow(SensorFileReader& reader, std::vector<double>& row) {
    return reader.readRow(row);
}

bool byWholeRead(SensorFileReader& reader, std::vector<double>& row) {
    return reader.read(row.data(), row.size()) && !reader.isEof();
}

bool bySingleRead(SensorFileReader& reader, std::vector<double>& row) {
    for (double& value : row)
        reader.read(&value, 1);
    return !reader.isEof();
}

bool byVar(SensorFileReader& reader, std::vector<double>& row) {
    for (double& value : row) {
        Var var;
        if (!reader.readValue(var)) return false;
        value = var.convert<double>();
    }
    return !reader.isEof();
}

bool isSame(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}

bool isSame(const Rows& a, const Rows& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
        return std::equal(x.begin(), x.end(), y.begin(), y.end(),
                          [](double v, double w) { return isSame(v, w); });
    });
}

RC_GTEST_PROP(RowRoundTripTest, AllWaysOfReadingGiveTheSameValues, ()) {
    const auto config = configOfTypes(*anyColumns());
    const auto rows = *anyRows(config.getColumnCount(), anyDouble());
    for (const bool binary : {true, false}) {
        const TemporaryFile file(openingOf(config, binary) + samplesByRow(config, binary, rows));
        const Rows expected = rowsOf(file, binary, byVar);
        RC_ASSERT(isSame(rowsOf(file, binary, byRow), expected));
        RC_ASSERT(isSame(rowsOf(file, binary, byWholeRead), expected));
        RC_ASSERT(isSame(rowsOf(file, binary, bySingleRead), expected));
        if (binary) RC_ASSERT(expected.size() == rows.size());
    }
}

RC_GTEST_PROP(RowRoundTripTest, AllWaysOfReadingAgreeOnRandomText, ()) {
    const auto config = configOfTypes(*anyColumns());
    const auto text = *rc::gen::container<std::string>(
        rc::gen::elementOf(std::string("00112233456789..+-eE\t\t\t\t  \n\nxnaif")));
    const TemporaryFile file(openingOf(config, false) + text);
    const Rows expected = rowsOf(file, false, bySingleRead);
    RC_ASSERT(isSame(rowsOf(file, false, byRow), expected));
    RC_ASSERT(isSame(rowsOf(file, false, byWholeRead), expected));
}

/// Values that every encoding keeps: what a column's type holds, with five decimals at most.
double exactValue(int typeCode, int n) {
    switch (typeCode) {
        case 2:
        case 3:
            return '!' + n % 90;
        case 4:
        case 6:
        case 11:
        case 13:
        case 15:
            return n % 256;
        case 12:
            return n % 256 - 128;
        case 10:
            return n % 2;
        case 8:
            return n / 4.0;
        case 9:
            return n / 100000.0;
        default:
            return n - 100;
    }
}

RC_GTEST_PROP(RowRoundTripTest, TextAndBinaryKeepTheSameExactValues, ()) {
    const auto codes = *anyColumns();
    const auto config = configOfTypes(codes);
    Rows rows = *anyRows(codes.size(),
                         rc::gen::map(rc::gen::inRange(0, 32000), [](int n) { return double(n); }));
    for (auto& row : rows) {
        for (std::size_t i = 0; i < codes.size(); ++i) {
            row[i] = exactValue(codes[i], static_cast<int>(row[i]));
        }
    }
    for (const bool binary : {true, false}) {
        const TemporaryFile file(openingOf(config, binary) + samplesByRow(config, binary, rows));
        RC_ASSERT(isSame(rowsOf(file, binary, byRow), rows));
    }
}

RC_GTEST_PROP(RowRoundTripTest, ConfigurationsReadBackFromBothEncodings, ()) {
    auto config = configOfTypes(*anyColumns());
    config.setSampleFrequency(*rc::gen::inRange(1, 1'000'000) / 64.0);
    config.setCalibFormat(*rc::gen::arbitrary<std::uint16_t>());
    for (const int side : *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 6))) {
        config.addCalibData("R" + std::to_string(side), Eigen::MatrixXd::Constant(side, 2, 0.25));
        config.addCalibData("I" + std::to_string(side), Eigen::MatrixXi::Constant(1, side, -side));
    }
    for (const bool binary : {true, false}) {
        const TemporaryFile file(openingOf(config, binary));
        SensorFileReader reader;
        reader.open(file.path(), binary);
        RC_ASSERT(openingOf(reader.getConfig(), true) == openingOf(config, true));
        RC_ASSERT(openingOf(reader.getConfig(), false) == openingOf(config, false));
    }
}

TEST(RowAllocationTest, RowsTakeNothingFromTheHeapOnceWarm) {
    const auto config = configOfTypes(kAllTypeCodes);
    const std::vector<double> values = {65, 66, 7,   -8, 9,  -10, 0.25, 1e-3,
                                        1,  44, -44, 3,  -4, 5,   -6};
    for (const bool binary : {true, false}) {
        const TemporaryFile file;
        SensorFileWriter writer;
        writer.open(file.path(), config, binary, true);
        writer.writeRow(values);
        const std::size_t beforeWriting = AllocationCount::calls();
        for (int i = 0; i < 20'000; ++i)
            writer.writeRow(values);
        for (int i = 0; i < 1000; ++i) {
            for (const double value : values)
                writer.write(value);
        }
        EXPECT_EQ(AllocationCount::calls(), beforeWriting);
        writer.close();

        SensorFileReader reader;
        reader.open(file.path(), binary);
        std::vector<double> row(values.size());
        EXPECT_TRUE(reader.readRow(row));
        const std::size_t beforeReading = AllocationCount::calls();
        for (int i = 0; i < 21'000 && reader.readRow(row); ++i) {
        }
        EXPECT_EQ(AllocationCount::calls(), beforeReading);
        EXPECT_EQ(row, values);
        EXPECT_FALSE(reader.isEof());
        EXPECT_FALSE(reader.readRow(row));
    }
}

}  // namespace
}  // namespace SensorFile
