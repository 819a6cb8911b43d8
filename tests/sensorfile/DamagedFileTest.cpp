#include "sensorfile/SensorFileReader.hpp"
#include "tests/sensorfile/AllocationCount.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <algorithm>
#include <functional>
#include <vector>

#include <Poco/Exception.h>

// Files cut anywhere and changed anywhere: opening and reading end, nothing is allocated on the
// word of a count, and what could be opened holds no more rows than its bytes allow.

namespace SensorFile {
namespace {

/// Blocks, configuration and exception texts; far below what a forged count would ask for.
constexpr std::size_t kMaxAllocated = 4 * 1024 * 1024;

std::string sampleFile(bool binary, int calibVersion, bool isCalibOnly) {
    auto config = configOf({{"COUNT", 13}, {"ACC", 14}, {"T", 9}, {"B", 10}, {"C", 2}});
    config.setCalibVersion(static_cast<std::uint16_t>(calibVersion));
    config.setCalibOnly(isCalibOnly);
    config.addCalibData("Gain1", Eigen::MatrixXd::Constant(3, 3, 1.5));
    config.addCalibData("Offset1", Eigen::MatrixXi::Constant(1, 3, -7));
    std::string content = openingOf(config, binary);
    if (isCalibOnly) return content;
    for (int i = 1; i <= 3; ++i) {
        content += binary ? bytes("0001 0002 3ff0000000000000 01 41") : "1\t2\t0.5\t1\tA\t\n";
    }
    return content;
}

/// Opens and reads to the end by rows and by values; the number of rows, or -1 if not opened.
int readAll(const std::string& path, bool binary) {
    SensorFileReader reader;
    try {
        reader.open(path, binary);
    } catch (const Poco::DataException&) {
        EXPECT_FALSE(reader.isOpen());
        EXPECT_EQ(reader.getConfig().getColumnCount(), 0U);
        return -1;
    }
    std::vector<double> row(reader.getConfig().getColumnCount());
    int rows = 0;
    while (reader.readRow(row))
        ++rows;
    reader.rewind();
    int sameRows = 0;
    while (!row.empty() && reader.read(row.data(), row.size()) && !reader.isEof())
        ++sameRows;
    EXPECT_EQ(sameRows, rows);
    Poco::Dynamic::Var value;
    reader.rewind();
    while (reader.readValue(value) && !reader.isEof()) {
    }
    return rows;
}

struct Variant {
    bool binary;
    int calibVersion;
    bool isCalibOnly;
};

class DamagedFileTest : public testing::TestWithParam<Variant> {
 protected:
    /// Reads content as a file with bounded memory; the number of rows.
    int rowsOf(const std::string& content) {
        file_.setContent(content);
        const std::size_t before = AllocationCount::bytes();
        const int rows = readAll(file_.path(), GetParam().binary);
        EXPECT_LT(AllocationCount::bytes() - before, kMaxAllocated);
        return rows;
    }
    [[nodiscard]] std::string wholeFile() const {
        return sampleFile(GetParam().binary, GetParam().calibVersion, GetParam().isCalibOnly);
    }

 private:
    TemporaryFile file_;
};

TEST_P(DamagedFileTest, TheWholeFileHoldsThreeRows) {
    EXPECT_EQ(rowsOf(wholeFile()), GetParam().isCalibOnly ? 0 : 3);
}

TEST_P(DamagedFileTest, CutAtEveryByteItEnds) {
    const std::string content = wholeFile();
    int lastRows = -1;
    for (std::size_t size = 0; size < content.size(); ++size) {
        const int rows = rowsOf(content.substr(0, size));
        EXPECT_GE(rows, lastRows) << size;
        EXPECT_LE(rows, 3) << size;
        lastRows = rows;
    }
    // Behind the last value, a character, come only its separator and the line end.
    EXPECT_LT(rowsOf(content.substr(0, content.size() - 3)), 3);
}

TEST_P(DamagedFileTest, ChangedAtEveryByteItEnds) {
    const std::string content = wholeFile();
    for (std::size_t i = 0; i < content.size(); ++i) {
        for (const int change : {0x00, 0x01, 0x7f, 0x80, 0xff, 0x09, 0x0a, 0x2d, 0x39}) {
            std::string changed = content;
            changed[i] = static_cast<char>(change);
            EXPECT_LE(rowsOf(changed), 100) << i << " " << change;
        }
    }
}

TEST_P(DamagedFileTest, WithABitTurnedAtEveryByteItEnds) {
    const std::string content = wholeFile();
    for (std::size_t i = 0; i < content.size(); ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string changed = content;
            changed[i] = static_cast<char>(changed[i] ^ (1 << bit));
            rowsOf(changed);
        }
    }
}

TEST_P(DamagedFileTest, WithAByteTakenOutOrDoubledItEnds) {
    const std::string content = wholeFile();
    for (std::size_t i = 0; i < content.size(); ++i) {
        rowsOf(content.substr(0, i) + content.substr(i + 1));
        rowsOf(content.substr(0, i + 1) + content.substr(i));
    }
}

INSTANTIATE_TEST_SUITE_P(AllKinds, DamagedFileTest,
                         testing::Values(Variant{false, 0x0200, false},
                                         Variant{true, 0x0200, false},
                                         Variant{false, 0x0101, false},
                                         Variant{true, 0x0100, false}, Variant{true, 0x8101, false},
                                         Variant{false, 0x0200, true}, Variant{true, 0x0200, true},
                                         Variant{true, 0x8101, true}),
                         [](const auto& variant) {
                             return std::string(variant.param.binary ? "Binary" : "Text") +
                                    std::to_string(variant.param.calibVersion) +
                                    (variant.param.isCalibOnly ? "CalibOnly" : "Recording");
                         });

}  // namespace
}  // namespace SensorFile
