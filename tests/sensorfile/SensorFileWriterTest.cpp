#include "sensorfile/SensorFileWriter.hpp"
#include "tests/sensorfile/WriterFixture.hpp"

#include <cmath>
#include <limits>
#include <sstream>

#include <Poco/BinaryWriter.h>
#include <Poco/Exception.h>

namespace SensorFile {
namespace {

using Poco::Dynamic::Var;

TEST_F(WriterTest, ClosedWriterHasDefaults) {
    EXPECT_FALSE(writer.isOpen());
    EXPECT_FALSE(writer.areHeadersValid());
    EXPECT_EQ(writer.valueCount(), 0U);
    EXPECT_EQ(writer.getConfig().getColumnCount(), 0U);
    writer.writeHeaders(configOfTypes({9}));
    EXPECT_FALSE(writer.areHeadersValid());
    EXPECT_FALSE(std::filesystem::exists(file.path()));
    writer.close();
}

TEST_F(WriterTest, OpenWithHeadersWritesAllSections) {
    for (const bool binary : {false, true}) {
        auto config = configOfTypes({9, 14});
        config.addCalibData("G", Eigen::MatrixXd::Identity(2, 2));
        open(config, binary);
        EXPECT_TRUE(writer.isOpen());
        EXPECT_TRUE(writer.areHeadersValid());
        EXPECT_EQ(writer.isBinary(), binary);
        EXPECT_EQ(file.content(), openingOf(config, binary));
        EXPECT_EQ(closedSamples(), "");
        EXPECT_FALSE(writer.isOpen());
        EXPECT_EQ(writer.getConfig().getColumnCount(), 0U);
    }
}

TEST_F(WriterTest, OpenWithoutHeadersWritesNothingYet) {
    const auto config = configOfTypes({9});
    writer.open(file.path(), config, true, /*writeHeaders=*/false);
    EXPECT_TRUE(writer.isOpen());
    EXPECT_FALSE(writer.areHeadersValid());
    EXPECT_EQ(file.content(), "");
    writer.writeHeaders(config);
    EXPECT_TRUE(writer.areHeadersValid());
    EXPECT_EQ(file.content(), openingOf(config, true));
}

TEST_F(WriterTest, ValuesBeforeTheHeadersAreNotPrevented) {
    writer.open(file.path(), configOfTypes({14}), true, /*writeHeaders=*/false);
    writer.write(1);
    writer.close();
    EXPECT_EQ(hexOf(file.content()), "0001");
}

TEST_F(WriterTest, OpenDoesNothingWhenAlreadyOpen) {
    openBinary({14});
    const TemporaryFile other;
    writer.open(other.path(), configOfTypes({9}), false, true);
    EXPECT_FALSE(std::filesystem::exists(other.path()));
    EXPECT_TRUE(writer.isBinary());
    writer.write(1);
    EXPECT_EQ(hexOf(closedSamples()), "0001");
}

TEST_F(WriterTest, OpenEmptiesAnExistingFile) {
    file.setContent(std::string(100'000, 'x'));
    openText({9});
    EXPECT_EQ(closedSamples(), "");
}

TEST_F(WriterTest, AFailedOpenLeavesTheWriterClosed) {
    const std::string path = file.path() + "/none/file.dat";
    try {
        writer.open(path, configOfTypes({9}), true, true);
        ADD_FAILURE() << "opened";
    } catch (const Poco::FileException& e) {
        EXPECT_NE(e.message().find(path), std::string::npos) << e.displayText();
    }
    EXPECT_FALSE(writer.isOpen());
    EXPECT_EQ(writer.getConfig().getColumnCount(), 0U);
    openBinary({14});
    writer.write(1);
    EXPECT_EQ(hexOf(closedSamples()), "0001");
}

TEST_F(WriterTest, HeadersThatCannotBeWrittenCloseTheWriter) {
    auto config = configOfTypes({9});
    config.addCalibData("G", Eigen::MatrixXd::Zero(300, 1));
    EXPECT_THROW(writer.open(file.path(), config, true, true), Poco::RangeException);
    EXPECT_FALSE(writer.isOpen());
    EXPECT_EQ(writer.getConfig().getColumnCount(), 0U);
    EXPECT_EQ(file.content(), "");
}

TEST_F(WriterTest, MissingDatesBecomeThePresentTimeInTheWritersCopyAlone) {
    SensorFileConfig config;
    config.addColumn("a", 9);
    writer.open(file.path(), config, false, true);
    EXPECT_EQ(writer.getConfig().getCreationTime(), clock.date);
    EXPECT_EQ(writer.getConfig().getCalibTime(), clock.date);
    EXPECT_FALSE(config.hasCreationTime());
    EXPECT_FALSE(config.hasCalibTime());
    EXPECT_NE(file.content().find("\n23/05/2017\t10:04:31\n"), std::string::npos);
    EXPECT_NE(file.content().find("Calib datetime:\t23/05/2017\t10:04:31\n"), std::string::npos);
}

TEST_F(WriterTest, GivenDatesStay) {
    openText({9});
    EXPECT_EQ(writer.getConfig().getCalibTime(), Poco::DateTime(2016, 12, 1, 8, 0, 9));
}

TEST_F(WriterTest, ACalibrationFileGetsNoCreationTimeAndOneSection) {
    SensorFileConfig config;
    config.setCalibOnly(true);
    config.addCalibData("G", Eigen::MatrixXd::Identity(1, 1));
    writer.open(file.path(), config, false, true);
    EXPECT_FALSE(writer.getConfig().hasCreationTime());
    EXPECT_TRUE(writer.getConfig().hasCalibTime());
    EXPECT_EQ(file.content().find("Calib id: "), 0U);
    EXPECT_EQ(file.content().find("Data id"), std::string::npos);
}

TEST_F(WriterTest, AConfigurationReadFromALittleEndianFileIsWrittenBigEndian) {
    auto config = configOfTypes({14});
    config.setBigEndian(false);
    open(config, true);
    EXPECT_TRUE(writer.getConfig().isBigEndian());
    writer.write(1);
    EXPECT_EQ(hexOf(closedSamples()), "0001");
}

// ---- Rows ----

TEST_F(WriterTest, RowsGiveTheBytesOfTheirValues) {
    const std::vector<double> row = {65, 66, 7, -8, 9, -10, 0.25, 1e-3, 1, 44, -44, 3, -4, 5, -6};
    for (const bool binary : {false, true}) {
        open(configOfTypes(kAllTypeCodes), binary);
        for (const double value : row)
            writer.write(value);
        const std::string expected = closedSamples();
        open(configOfTypes(kAllTypeCodes), binary);
        writer.writeRow(row);
        EXPECT_EQ(writer.valueCount(), row.size());
        EXPECT_EQ(hexOf(closedSamples()), hexOf(expected));
    }
}

TEST_F(WriterTest, ARefusedTextRowIsNotWrittenAtAll) {
    openText({9, 14});
    const double good[] = {1, 2};
    const double bad[] = {3, 40000};
    writer.writeRow(good);
    EXPECT_THROW(writer.writeRow(bad), Poco::RangeException);
    writer.writeRow(good);
    EXPECT_EQ(writer.refusedRowCount(), 1U);
    EXPECT_EQ(writer.valueCount(), 4U);
    EXPECT_EQ(closedSamples(), "1\t2\t\n1\t2\t\n");
    openText({9});
    EXPECT_EQ(writer.refusedRowCount(), 0U);
}

TEST_F(WriterTest, RowsOfAnotherSizeAreRefused) {
    for (const bool binary : {false, true}) {
        open(configOfTypes({9, 9}), binary);
        const double row[] = {1, 2, 3};
        EXPECT_THROW(writer.writeRow(row), Poco::InvalidArgumentException);
        EXPECT_THROW(writer.writeRow(std::span(row, 1)), Poco::InvalidArgumentException);
        EXPECT_THROW(writer.writeRow({}), Poco::InvalidArgumentException);
        EXPECT_EQ(closedSamples(), "");
    }
}

TEST_F(WriterTest, ARowInTheMiddleOfARowIsRefused) {
    openBinary({14, 14});
    const double row[] = {1, 2};
    writer.write(5);
    EXPECT_THROW(writer.writeRow(row), Poco::IllegalStateException);
    writer.write(6);
    writer.writeRow(row);
    EXPECT_EQ(hexOf(closedSamples()), "0005000600010002");
}

TEST_F(WriterTest, WithoutColumnsEveryValueIsRefused) {
    for (const bool binary : {false, true}) {
        open(configOfTypes({}), binary);
        EXPECT_THROW_MESSAGE(writer.write(1.0), Poco::InvalidAccessException,
                             "The file has no columns.");
        EXPECT_THROW_MESSAGE(writer.writeRow({}), Poco::InvalidAccessException,
                             "The file has no columns.");
        EXPECT_EQ(closedSamples(), "");
    }
}

TEST_F(WriterTest, AClosedWriterTakesNoValues) {
    EXPECT_THROW(writer.write(1.0), Poco::InvalidAccessException);
    EXPECT_THROW(writer.writeRow({}), Poco::InvalidAccessException);
    EXPECT_THROW(writer.writeByte(1), Poco::InvalidAccessException);
    EXPECT_THROW(writer.writeText("x"), Poco::InvalidAccessException);
    writer.flush();
    EXPECT_EQ(writer.valueCount(), 0U);
}

// ---- Text and primitives ----

TEST_F(WriterTest, WriteTextEndsTheLineInTheLastColumnAndDoesNotCount) {
    openText({9, 9});
    writer.writeText("a");
    EXPECT_EQ(writer.valueCount(), 0U);
    writer.writeText("b");
    writer.write(1);
    writer.writeText("c");
    EXPECT_EQ(samples(), "a\tb\t1\tc\t\n");
    writer.write(2);
    EXPECT_EQ(closedSamples(), "a\tb\t1\tc\t\n2\t\n");
}

TEST_F(WriterTest, ARefusedValueDoesNotTakeBackTextWrittenBeforeItsRow) {
    openText({9, 14});
    writer.writeText("note");
    writer.write(1);
    EXPECT_THROW(writer.write(40000), Poco::RangeException);
    EXPECT_EQ(closedSamples(), "note\t");
}

TEST_F(WriterTest, WriteTextTakesTextOfAnyLength) {
    openText({9});
    const std::string text(1'000'000, 'x');
    writer.writeText(text);
    writer.writeText("y");
    EXPECT_EQ(closedSamples(), text + "\t\ny\t\n");
}

TEST_F(WriterTest, PrimitivesAreThoseOfABigEndianBinaryWriter) {
    openBinary({14});
    writer.writeByte(0x01);
    writer.writeUInt16(0x0203);
    writer.writeUInt32(0x04050607);
    writer.writeUInt64(0x08090a0b0c0d0e0f);
    writer.writeFloat(1.5f);
    writer.writeDouble(-2.5);
    writer.writeString(std::string(200, 'x'));
    writer.writeString("");
    EXPECT_EQ(writer.valueCount(), 0U);
    EXPECT_EQ(hexOf(closedSamples()),
              hexOf(bytes("01 0203 04050607 08090a0b0c0d0e0f 3fc00000 c004000000000000 c801") +
                    std::string(200, 'x') + bytes("00")));
}

TEST_F(WriterTest, FormatValueRendersForAColumn) {
    openText({9, 11, 12, 2, 14, 8, 10});
    EXPECT_EQ(writer.formatValue(0, Var(1.5), false), "1.5");
    EXPECT_EQ(writer.formatValue(0, Var(100), false), "100");
    EXPECT_EQ(writer.formatValue(0, Var(std::nan("")), false), "nan");
    EXPECT_EQ(writer.formatValue(1, Var(300.7), false), "44");
    EXPECT_EQ(writer.formatValue(1, Var(~Poco::UInt64{0}), false), "255");
    EXPECT_EQ(writer.formatValue(1, Var((Poco::Int64{1} << 53) + 1), false), "1");
    EXPECT_EQ(writer.formatValue(2, Var(200), false), "-56");
    EXPECT_EQ(writer.formatValue(3, Var(65), false), "A");
    EXPECT_EQ(writer.formatValue(4, Var(std::string("-12")), false), "-12");
    EXPECT_EQ(writer.formatValue(5, Var(2.0), false), "2");
    EXPECT_EQ(writer.formatValue(6, Var(2.0), false), "1");
    EXPECT_EQ(writer.formatValue(7, Var(2.0), false), "");
    EXPECT_EQ(writer.formatValue(1, Var(65), true), "A");
    EXPECT_EQ(writer.formatValue(9, Var(65), true), "");
    const double value = 0.1;
    EXPECT_EQ(writer.formatValue(0, Var(0.1), true),
              std::string(reinterpret_cast<const char*>(&value), sizeof value));
    EXPECT_THROW((void)writer.formatValue(4, Var(1e6), false), Poco::RangeException);
}

// ---- What reaches the file, and when ----

TEST_F(WriterTest, TextRowsReachTheFileOneByOne) {
    openText({9, 9});
    writer.write(1.5);
    EXPECT_EQ(samples(), "");
    writer.flush();
    EXPECT_EQ(samples(), "");
    writer.write(2.5);
    EXPECT_EQ(samples(), "1.5\t2.5\t\n");
}

TEST_F(WriterTest, BinaryRowsWaitUntilARowIsHalfASecondYounger) {
    using namespace std::chrono_literals;
    openBinary({14});
    writer.write(1);
    clock.time += 249ms;
    writer.write(2);
    EXPECT_EQ(samples(), "");
    clock.time += 251ms;
    writer.write(3);
    EXPECT_EQ(hexOf(samples()), "000100020003");
    writer.write(4);
    clock.time += 200ms;
    const double row[] = {5};
    writer.writeRow(row);
    EXPECT_EQ(hexOf(samples()), "000100020003");
    clock.time += 300ms;
    writer.writeRow(row);
    EXPECT_EQ(hexOf(samples()), "000100020003000400050005");
}

TEST_F(WriterTest, RowsOfTheLastFileDoNotHurryTheNext) {
    using namespace std::chrono_literals;
    openBinary({14});
    writer.write(1);
    writer.close();
    clock.time += 1s;
    openBinary({14});
    writer.write(2);
    EXPECT_EQ(samples(), "");
}

TEST_F(WriterTest, RowsFarFasterThanSensorsShareALookAtTheClock) {
    using namespace std::chrono_literals;
    openBinary({11});
    for (int i = 0; i < 300; ++i)
        writer.write(1);
    clock.time += 4ms;
    writer.write(1);
    clock.time += 500ms;
    for (int i = 0; i < 7; ++i)
        writer.write(1);
    EXPECT_EQ(samples(), "");
    writer.write(1);
    EXPECT_EQ(samples().size(), 309U);
    // They have become slow: each is looked at again.
    writer.write(1);
    clock.time += 500ms;
    writer.write(1);
    EXPECT_EQ(samples().size(), 311U);
}

TEST_F(WriterTest, Integers64BitsWideKeepTheirPlaceAmongOtherValues) {
    openBinary({14, 15, 11});
    for (int i = 0; i < 2; ++i) {
        writer.write(-2);
        writer.write(std::uint64_t{0xfedc'ba98'7654'3211});
        writer.write(3.0F);
    }
    writer.write(4);
    EXPECT_EQ(hexOf(closedSamples()),
              "fffefedcba987654321103"
              "fffefedcba987654321103"
              "0004");
}

TEST_F(WriterTest, APrimitiveWithinARowStandsBehindTheValuesBeforeIt) {
    openBinary({14, 14});
    writer.write(1);
    writer.writeByte(0xaa);
    writer.write(2);
    const double row[] = {3, 4};
    writer.writeRow(row);
    EXPECT_EQ(hexOf(closedSamples()), "0001aa000200030004");
}

TEST_F(WriterTest, FlushHandsOverWholeRowsAlone) {
    openBinary({14, 14});
    for (int i = 1; i <= 3; ++i)
        writer.write(i);
    writer.flush();
    EXPECT_EQ(hexOf(samples()), "00010002");
    writer.write(4);
    writer.flush();
    EXPECT_EQ(hexOf(samples()), "0001000200030004");
    writer.write(5);
    EXPECT_EQ(hexOf(closedSamples()), "00010002000300040005");
}

TEST_F(WriterTest, LongRecordingsKeepEveryRow) {
    openBinary({13, 9, 11});
    std::ostringstream expected;
    Poco::BinaryWriter reference(expected, Poco::BinaryWriter::BIG_ENDIAN_BYTE_ORDER);
    for (int i = 0; i < 100'000; ++i) {
        const double row[] = {double(i), i * 0.5, double(i)};
        writer.writeRow(row);
        reference << static_cast<Poco::UInt16>(i) << i * 0.5 << static_cast<Poco::UInt8>(i);
    }
    EXPECT_TRUE(closedSamples() == expected.str());
}

TEST_F(WriterTest, ARowLargerThanTheBufferIsWrittenWhole) {
    const std::vector<int> codes(40'000, 9);
    const std::vector<double> row(codes.size(), 123456.789);
    for (const bool binary : {false, true}) {
        auto config = configOfTypes(codes);
        open(config, binary);
        for (int i = 0; i < 3; ++i)
            writer.writeRow(row);
        EXPECT_EQ(closedSamples().size(), 3 * (binary ? 8 * row.size() : 11 * row.size() + 1));
    }
}

TEST_F(WriterTest, TheDestructorWritesAndCloses) {
    {
        SensorFileWriter inner;
        inner.open(file.path(), configOfTypes({14}), true, false);
        inner.write(7);
    }
    EXPECT_EQ(hexOf(file.content()), "0007");
}

TEST_F(WriterTest, CloseKeepsTheEncodingUntilTheNextOpen) {
    openBinary({14});
    writer.write(1);
    writer.close();
    EXPECT_TRUE(writer.isBinary());
    EXPECT_EQ(writer.valueCount(), 0U);
    EXPECT_FALSE(writer.areHeadersValid());
}

/// Counts values as a recording of days does.
class LongCount : public SensorFileIo {
 public:
    LongCount(std::uint32_t columns, std::uint32_t rowsSoFar) : SensorFileIo(true) {
        for (std::uint32_t i = 0; i < columns; ++i)
            config_.addColumn("", 9);
        valueCount_ = columns * rowsSoFar;
        startSamples();
    }
    using SensorFileIo::countRow;
    using SensorFileIo::countValue;
    [[nodiscard]] std::uint32_t column() const { return column_; }
};

TEST(SensorFileIoTest, TheColumnStaysRightWhenTheCountIsReduced) {
    constexpr std::uint32_t kColumns = 11;
    LongCount count(kColumns, 0x8000'0000 / kColumns - 2);
    bool isReduced = false;
    for (int i = 0; i < 100; ++i) {
        const std::uint32_t before = count.valueCount();
        EXPECT_EQ(count.countValue(), (i + 1) % kColumns == 0);
        EXPECT_EQ(count.valueCount() % kColumns, count.column());
        isReduced = isReduced || count.valueCount() < before;
    }
    EXPECT_TRUE(isReduced);
    LongCount rows(kColumns, 0x8000'0000 / kColumns);
    rows.countRow();
    EXPECT_EQ(rows.valueCount(), 0U);
    EXPECT_EQ(rows.column(), 0U);
}

TEST(SensorFileIoTest, ABegunRowIsKnownFromTheCount) {
    const LongCount count(7, 3);
    EXPECT_EQ(count.column(), 0U);
}

TEST(ClockTest, TheSystemClockGoesOn) {
    const Poco::DateTime before;
    EXPECT_GE(Clock::current().now(), before);
    EXPECT_GT(Clock::current().steady().count(), 0);
    EXPECT_EQ(Clock::replace(nullptr), nullptr);
}

}  // namespace
}  // namespace SensorFile
