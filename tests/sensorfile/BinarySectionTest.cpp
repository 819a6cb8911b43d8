#include "sensorfile/FormatException.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <algorithm>
#include <cmath>
#include <sstream>

#include <Poco/BinaryReader.h>
#include <Poco/BinaryWriter.h>
#include <Poco/Exception.h>

// The sections of binary files: exact bytes out, both byte orders in.

namespace SensorFile {
namespace {

const std::string kMagic = bytes("af243246 56fe1289 9078bc29");
const std::string kDate = bytes("17 05 11 0a 04 1f");

struct Read {
    SensorFileConfig config;
    int section = 3;
    bool isValid = false;
};

Read readBinary(const std::string& content) {
    Read read;
    std::istringstream in(content);
    read.section = read.config.readSectionId(in, true);
    if (read.section == 0) read.isValid = read.config.readColumns(in, true);
    if (read.section == 1) read.isValid = read.config.readCalibSection(in, true);
    return read;
}

/// Sections of the other byte order, which no writer here makes.
class LittleEndian {
 public:
    LittleEndian& words(std::uint16_t id, std::uint16_t version) {
        writer_ << Poco::UInt32{0xaf243246} << Poco::UInt32{0x56fe1289} << Poco::UInt32{0x9078bc29};
        writer_ << id << version;
        return *this;
    }
    template <typename T>
    LittleEndian& put(T value) {
        writer_ << value;
        return *this;
    }
    LittleEndian& raw(const std::string& data) {
        writer_.writeRaw(data);
        return *this;
    }
    [[nodiscard]] std::string text() const { return out_.str(); }

 private:
    std::ostringstream out_;
    Poco::BinaryWriter writer_{out_, Poco::BinaryWriter::LITTLE_ENDIAN_BYTE_ORDER};
};

std::string nameField(std::string name) {
    name.resize(32, '\0');
    return name;
}

const Eigen::MatrixXd& doublesOf(const SensorFileConfig& config, std::size_t index) {
    return dynamic_cast<const CalibData<Eigen::MatrixXd>&>(config.getCalibData(index)).getMatrix();
}

TEST(BinaryHeaderTest, IsBigEndianWithRecordsOfThirtyFourBytes) {
    const auto config = configOf({{"ACCX", 14}, {"TIME", 9}});
    EXPECT_EQ(hexOf(headerBytes(config)),
              hexOf(kMagic + bytes("8034 0101 000000000000006c") + kDate +
                    bytes("4069000000000000 0002") + bytes("02 0e") + nameField("ACCX") +
                    bytes("08 09") + nameField("TIME")));
}

TEST(BinaryHeaderTest, WithoutColumnsHasFortyBytesBehindTheFrequencyOfADouble) {
    const std::string section = headerBytes(configOf({}));
    EXPECT_EQ(hexOf(section), hexOf(kMagic + bytes("8034 0101 0000000000000028") + kDate +
                                    bytes("4069000000000000 0000")));
    EXPECT_EQ(configOf({}).getHeaderSize(), 40U);
}

TEST(BinaryHeaderTest, OlderVersionHoldsTheFrequencyInSixteenBits) {
    auto config = configOf({});
    config.setHeaderVersion(0x0100);
    config.setSampleFrequency(99.5);
    EXPECT_EQ(hexOf(headerBytes(config)),
              hexOf(kMagic + bytes("8034 0100 0000000000000028") + kDate + bytes("0064 0000")));
    const auto read = readBinary(headerBytes(config));
    EXPECT_EQ(read.config.getSampleFrequency(), 100.0);
    EXPECT_EQ(read.config.getHeaderVersion(), 0x0100);
}

TEST(BinaryHeaderTest, NamesKeepThirtyTwoCharacters) {
    const std::string name32(32, 'n');
    const std::string name40 = std::string(32, 'm') + std::string(8, 'x');
    const std::string section = headerBytes(configOf({{name32, 9}, {name40, 8}}));
    EXPECT_EQ(section.size(), 12U + 4 + 8 + 6 + 8 + 2 + 2 * 34);
    const auto read = readBinary(section).config;
    EXPECT_EQ(read.getColumn(0).getName(), name32);
    EXPECT_EQ(read.getColumn(1).getName(), std::string(32, 'm'));
}

TEST(BinaryHeaderTest, NamesEndAtTheirFirstNul) {
    const SensorFileConfig config = configOf({{std::string("AC\0CX", 5), kInt16}});
    EXPECT_EQ(headerBytes(config).substr(42), nameField("AC"));
}

TEST(BinaryHeaderTest, BytesBehindTheNulOfANameAreNotRead) {
    std::string section = headerBytes(configOf({{"ab", 9}}));
    section[section.size() - 29] = 'z';
    EXPECT_EQ(readBinary(section).config.getColumn(0).getName(), "ab");
}

TEST(BinaryHeaderTest, EveryTypeReadsBack) {
    const auto config = configOfTypes(kAllTypeCodes);
    const auto read = readBinary(headerBytes(config));
    EXPECT_TRUE(read.isValid);
    EXPECT_EQ(hexOf(headerBytes(read.config)), hexOf(headerBytes(config)));
}

TEST(BinaryHeaderTest, KindZeroOrOneTakesTheTypeFromTheSize) {
    std::string section = headerBytes(configOf({{"a", 9}}));
    section[section.size() - 34] = '\4';
    section[section.size() - 33] = '\1';
    EXPECT_EQ(readBinary(section).config.getColumn(0).getTypeCode(), 7);
    section[section.size() - 33] = '\0';
    EXPECT_EQ(readBinary(section).config.getColumn(0).getTypeCode(), 6);
    section[section.size() - 33] = '\x11';
    EXPECT_EQ(readBinary(section).config.getColumn(0).getTypeCode(), 6);
}

TEST(BinaryHeaderTest, AnImpossibleSizeFailsTheRead) {
    std::string section = headerBytes(configOf({{"a", 9}}));
    section[section.size() - 34] = '\3';
    section[section.size() - 33] = '\0';
    const auto read = readBinary(section);
    EXPECT_FALSE(read.isValid);
    EXPECT_EQ(read.config.getColumnCount(), 0U);
}

TEST(BinaryHeaderTest, AnUnknownTypeIsRefused) {
    std::string section = headerBytes(configOf({{"a", 9}}));
    section[section.size() - 33] = '\x13';
    EXPECT_THROW_MESSAGE(readBinary(section), Poco::DataException,
                         "Column type is not compatible with SensorFile format");
}

TEST(BinaryHeaderTest, MonthAndDayZeroCountAsOne) {
    std::string section = headerBytes(configOf({}));
    section[24] = '\0';
    section[25] = '\0';
    EXPECT_EQ(readBinary(section).config.getCreationTime(), Poco::DateTime(2017, 1, 1, 10, 4, 31));
}

TEST(BinaryHeaderTest, MonthAndDayZeroCountAsOneInTheOtherOrderToo) {
    const std::string section = LittleEndian()
                                    .words(0x8034, 0x0100)
                                    .put(Poco::UInt64{40})
                                    .raw(bytes("00 00 0a 11 1f 04"))
                                    .put(Poco::UInt16{50})
                                    .put(Poco::UInt16{0})
                                    .text();
    const auto read = readBinary(section);
    EXPECT_TRUE(read.isValid);
    EXPECT_EQ(read.config.getCreationTime(), Poco::DateTime(2017, 1, 1, 10, 4, 31));
    EXPECT_EQ(read.config.getSampleFrequency(), 50.0);
}

TEST(BinaryHeaderTest, AnImpossibleDateIsRefused) {
    std::string section = headerBytes(configOf({}));
    section[25] = '\x0d';
    EXPECT_THROW_MESSAGE(readBinary(section), FormatException, "no such date: 23/13/2017 10:4:31");
}

TEST(BinaryHeaderTest, ManyColumnsInAnEmptyFileEndWithTheData) {
    std::string section = headerBytes(configOf({}));
    section[section.size() - 2] = '\xff';
    section[section.size() - 1] = '\xff';
    EXPECT_THROW_MESSAGE(readBinary(section), FormatException, "section ends early");
    EXPECT_THROW_MESSAGE(readBinary(section + "\1\2abc"), FormatException, "section ends early");
}

TEST(BinaryHeaderTest, MoreColumnsThanSixteenBitsCountAreRefused) {
    SensorFileConfig config;
    for (int i = 0; i < 65536; ++i)
        config.addColumn("", 2);
    EXPECT_THROW_MESSAGE(headerBytes(config), Poco::RangeException,
                         "Too many columns for a binary file!");
}

TEST(BinaryHeaderTest, LittleEndianFilesAreReadOnceTheMagicShowsIt) {
    const std::string section = LittleEndian()
                                    .words(0x8034, 0x0101)
                                    .put(Poco::UInt64{74})
                                    .raw(bytes("05 17 0a 11 1f 04"))
                                    .put(819.2)
                                    .put(Poco::UInt16{1})
                                    .raw(bytes("02 0d"))
                                    .raw(nameField("COUNT"))
                                    .text();
    const auto read = readBinary(section);
    EXPECT_EQ(read.section, 0);
    EXPECT_FALSE(read.config.isBigEndian());
    EXPECT_EQ(read.config.getCreationTime(), Poco::DateTime(2017, 5, 23, 10, 4, 31));
    EXPECT_EQ(read.config.getSampleFrequency(), 819.2);
    EXPECT_EQ(read.config.getColumn(0).getName(), "COUNT");
    EXPECT_EQ(read.config.getHeaderSize(), 74U);
}

TEST(BinaryOpeningTest, IdsSelectTheSection) {
    EXPECT_EQ(readBinary(dataBytes(configOf({}))).section, 2);
    EXPECT_EQ(hexOf(dataBytes(configOf({}))), hexOf(kMagic + bytes("8035 0100")));
    EXPECT_EQ(readBinary(kMagic + bytes("8037 0100")).section, 3);
}

TEST(BinaryOpeningTest, TheVersionOfEachSectionIsKept) {
    SensorFileConfig config;
    std::istringstream in(kMagic + bytes("8034 1234") + kMagic + bytes("8036 5678") + kMagic +
                          bytes("8035 9abc"));
    for (int section = 0; section < 3; ++section)
        EXPECT_EQ(config.readSectionId(in, true), section);
    EXPECT_EQ(config.getHeaderVersion(), 0x1234);
    EXPECT_EQ(config.getCalibVersion(), 0x5678);
    EXPECT_EQ(config.getDataVersion(), 0x9abc);
}

TEST(BinaryOpeningTest, AnythingElseIsNotRecognised) {
    const std::string opening = kMagic + bytes("8035 0100");
    for (std::size_t cut = 0; cut < opening.size(); ++cut) {
        EXPECT_EQ(readBinary(opening.substr(0, cut)).section, 3) << cut;
    }
    for (std::size_t i = 0; i < kMagic.size(); ++i) {
        std::string changed = opening;
        changed[i] = static_cast<char>(changed[i] ^ 1);
        EXPECT_EQ(readBinary(changed).section, 3) << i;
    }
}

TEST(BinaryOpeningTest, TheOrderTurnsAtEverySection) {
    std::istringstream in(LittleEndian().words(0x8035, 0x0100).text() + dataBytes(configOf({})) +
                          LittleEndian().words(0x8035, 0x0100).text());
    SensorFileConfig config;
    for (const bool isBigEndian : {false, true, false}) {
        EXPECT_EQ(config.readSectionId(in, true), 2);
        EXPECT_EQ(config.isBigEndian(), isBigEndian);
    }
}

TEST(BinaryCalibTest, HoldsRecordsInStorageOrder) {
    auto config = configOf({});
    Eigen::MatrixXd gain(2, 2);
    gain << 1, 2, 3, 4;
    config.addCalibData("G", gain);
    config.addCalibData("Counts", Eigen::MatrixXi::Constant(1, 2, -2));
    EXPECT_EQ(hexOf(calibBytes(config)),
              hexOf(kMagic + bytes("8036 0200 0000000000000055") + bytes("01 0c 10 08 00 09") +
                    bytes("0002 0000000000000002") + nameField("G") + bytes("09 02 02") +
                    bytes("3ff0000000000000 4008000000000000 4000000000000000 4010000000000000") +
                    nameField("Counts") + bytes("07 01 02 fffffffe fffffffe")));
    const auto read = readBinary(calibBytes(config));
    EXPECT_EQ(read.section, 1);
    EXPECT_TRUE(read.isValid);
    EXPECT_EQ(hexOf(calibBytes(read.config)), hexOf(calibBytes(config)));
    EXPECT_EQ(doublesOf(read.config, 0), gain);
}

TEST(BinaryCalibTest, TheFormatNumberHasOneByteInTheFirstVersion) {
    auto config = configOf({});
    config.setCalibFormat(0x0102);
    config.setCalibVersion(0x0100);
    EXPECT_EQ(hexOf(calibBytes(config)).substr(2 * (12 + 4 + 8 + 6)), "02");
    config.setCalibVersion(0x0101);
    EXPECT_EQ(hexOf(calibBytes(config)).substr(2 * (12 + 4 + 8 + 6)), "0102");
}

TEST(BinaryCalibTest, LongNamesAreCutYetCountedWhole) {
    auto config = configOf({});
    config.addCalibData(std::string(40, 'n'), Eigen::MatrixXd::Ones(1, 1));
    config.addCalibData("after", Eigen::MatrixXi::Ones(1, 1));
    EXPECT_EQ(config.getCalibSectionSize(), 32U + (40 + 3 + 8) + (5 + 3 + 4));
    const auto read = readBinary(calibBytes(config)).config;
    EXPECT_EQ(read.getCalibName(0), std::string(32, 'n'));
    EXPECT_EQ(read.getCalibName(1), "after");
}

TEST(BinaryCalibTest, MatricesThatOneByteCannotCountAreRefused) {
    constexpr const char* kMessage = "Calibration matrix is too large for a binary file!";
    SensorFileConfig config;
    config.addCalibData("G", Eigen::MatrixXd::Zero(255, 255));
    EXPECT_NO_THROW(calibBytes(config));
    config.addCalibData("H", Eigen::MatrixXd::Zero(256, 1));
    EXPECT_THROW_MESSAGE(calibBytes(config), Poco::RangeException, kMessage);
    EXPECT_NO_THROW(calibText(config));
}

TEST(BinaryCalibTest, OtherElementTypesAreRefused) {
    auto config = configOf({});
    config.addCalibData("G", Eigen::MatrixXd::Zero(1, 1));
    std::string section = calibBytes(config);
    section[12 + 4 + 8 + 6 + 2 + 8 + 32] = '\x08';
    EXPECT_THROW_MESSAGE(readBinary(section), Poco::DataException,
                         "Data type format is not supported!");
}

TEST(BinaryCalibTest, AnEndlessRecordCountEndsWithTheData) {
    auto config = configOf({});
    config.addCalibData("G", Eigen::MatrixXd::Zero(1, 1));
    std::string section = calibBytes(config);
    std::fill_n(section.begin() + 12 + 4 + 8 + 6 + 2, 8, '\xff');
    EXPECT_THROW_MESSAGE(readBinary(section), FormatException, "section ends early");
}

/// A section of bare values 1, 2, 3 ...
std::string bareSection(int version, int valueCount) {
    auto config = configOf({});
    config.setCalibVersion(static_cast<std::uint16_t>(version));
    config.addCalibData("values", Eigen::VectorXd::LinSpaced(valueCount, 1, valueCount));
    return calibBytes(config);
}

TEST(BareCalibTest, ValuesBecomeGainsColumnByColumnAndOffsets) {
    for (const int version : {0x0100, 0x0101}) {
        const auto config = readBinary(bareSection(version, 36)).config;
        ASSERT_EQ(config.getCalibCount(), 6U);
        const char* const names[] = {"Gain1", "Offset1", "Gain2", "Offset2", "Gain3", "Offset3"};
        for (std::size_t i = 0; i < 6; ++i)
            EXPECT_EQ(config.getCalibName(i), names[i]);
        Eigen::MatrixXd gain(3, 3);
        gain << 1, 4, 7, 2, 5, 8, 3, 6, 9;
        EXPECT_EQ(doublesOf(config, 0), gain);
        EXPECT_EQ(doublesOf(config, 1), Eigen::RowVector3d(10, 11, 12));
        EXPECT_EQ(doublesOf(config, 4), (gain.array() + 24).matrix());
        EXPECT_EQ(doublesOf(config, 5), Eigen::RowVector3d(34, 35, 36));
    }
}

TEST(BareCalibTest, EveryVersionBelow0200HoldsBareValuesAndAllOthersBut8101NamedOnes) {
    for (const int version : {0x0000, 0x0100, 0x0102, 0x01ff}) {
        const auto config = readBinary(bareSection(version, 12)).config;
        ASSERT_EQ(config.getCalibCount(), 2U) << version;
        EXPECT_EQ(config.getCalibName(0), "Gain1");
    }
    for (const int version : {0x0200, 0x0201, 0x8100, 0x8102, 0xffff}) {
        const auto config = readBinary(bareSection(version, 12)).config;
        ASSERT_EQ(config.getCalibCount(), 1U) << version;
        EXPECT_EQ(config.getCalibName(0), "values");
    }
}

TEST(BareCalibTest, ValuesAreWrittenAsBigEndianDoublesWhateverTheirTypeAndVersion) {
    for (const int version : {0x0101, 0x8101}) {
        auto config = configOf({});
        config.setBigEndian(false);
        config.setCalibVersion(static_cast<std::uint16_t>(version));
        config.addCalibData("doubles", Eigen::RowVector2d(1, 2));
        config.addCalibData("ints", Eigen::MatrixXi::Constant(1, 1, -2));
        EXPECT_EQ(hexOf(calibBytes(config)).substr(2 * (12 + 4)),
                  hexOf(bytes("0000000000000038 010c10080009 0002"
                              "3ff0000000000000 4000000000000000 c000000000000000")));
    }
}

TEST(BareCalibTest, UnfinishedPartsAddNoRecordAndFurtherValuesAreIgnored) {
    EXPECT_EQ(readBinary(bareSection(0x0101, 8)).config.getCalibCount(), 0U);
    EXPECT_EQ(readBinary(bareSection(0x0101, 9)).config.getCalibCount(), 1U);
    EXPECT_EQ(readBinary(bareSection(0x0101, 11)).config.getCalibCount(), 1U);
    EXPECT_EQ(readBinary(bareSection(0x0101, 12)).config.getCalibCount(), 2U);
    EXPECT_EQ(readBinary(bareSection(0x0101, 20)).config.getCalibCount(), 2U);
    EXPECT_EQ(readBinary(bareSection(0x0101, 60)).config.getCalibCount(), 6U);
}

TEST(BareCalibTest, TextValuesMakeTheSameRecords) {
    auto config = configOf({});
    config.setCalibVersion(0x0101);
    config.addCalibData("values", Eigen::VectorXd::LinSpaced(12, 1, 12));
    std::istringstream in(calibText(config));
    SensorFileConfig read;
    EXPECT_EQ(read.readSectionId(in, false), 1);
    EXPECT_TRUE(read.readCalibSection(in, false));
    EXPECT_EQ(hexOf(calibBytes(read)),
              hexOf(calibBytes(readBinary(bareSection(0x0101, 12)).config)));
}

TEST(BareCalibTest, TextOfTheCodedVersionGoesRowByRowWithTheFirstGainDoubled) {
    auto config = configOf({});
    config.setCalibVersion(0x8101);
    config.addCalibData("values", Eigen::VectorXd::LinSpaced(24, 1, 24));
    std::istringstream in(calibText(config));
    SensorFileConfig read;
    EXPECT_EQ(read.readSectionId(in, false), 1);
    EXPECT_TRUE(read.readCalibSection(in, false));
    Eigen::MatrixXd gain(3, 3);
    gain << 1, 2, 3, 4, 5, 6, 7, 8, 9;
    EXPECT_EQ(doublesOf(read, 0), gain * 2);
    EXPECT_EQ(doublesOf(read, 2), (gain.array() + 12).matrix());
    EXPECT_TRUE(read.isBigEndian());
}

TEST(BareCalibTest, GainsWrittenAsBareTextComeBackTransposed) {
    auto config = configOf({});
    config.setCalibVersion(0x0101);
    Eigen::MatrixXd gain(3, 3);
    gain << 1, 2, 3, 4, 5, 6, 7, 8, 9;
    config.addCalibData("Gain1", gain);
    config.addCalibData("Offset1", Eigen::RowVector3d(10, 11, 12));
    std::istringstream in(calibText(config));
    SensorFileConfig read;
    EXPECT_EQ(read.readSectionId(in, false), 1);
    EXPECT_TRUE(read.readCalibSection(in, false));
    EXPECT_EQ(doublesOf(read, 0), gain.transpose());
    EXPECT_EQ(doublesOf(read, 1), Eigen::RowVector3d(10, 11, 12));
    EXPECT_EQ(doublesOf(readBinary(calibBytes(config)).config, 0), gain);
}

TEST(BareCalibTest, NegativeOrMissingTextCountsAreRefused) {
    const std::string start =
        "Calib id: af243246 56fe1289 9078bc29 80360101 a b 1/2/2017 1:2:3 a b 2 a b c d ";
    for (const auto& [count, message] :
         {std::pair{"-1", "count of calibration values is negative"},
          std::pair{"x", "no number for the count of calibration values"},
          std::pair{"3 1 2", "no number for a calibration value"}}) {
        std::istringstream in(start + count);
        SensorFileConfig config;
        EXPECT_EQ(config.readSectionId(in, false), 1);
        EXPECT_THROW_MESSAGE(config.readCalibSection(in, false), FormatException, message);
    }
}

TEST(BareCalibTest, ASizeBelowItsOwnHeadIsRefused) {
    for (const auto& [version, size] : {std::pair{0x0100, 30}, std::pair{0x0101, 31}}) {
        std::string section = bareSection(version, 1);
        section[23] = static_cast<char>(size);
        EXPECT_THROW_MESSAGE(readBinary(section), FormatException,
                             "calibration section size is too small");
    }
    std::string section = bareSection(0x0100, 0);
    section[23] = '\x1f';
    EXPECT_EQ(readBinary(section).config.getCalibCount(), 0U);
}

TEST(BareCalibTest, AHugeSizeEndsWithTheData) {
    std::string section = bareSection(0x0101, 3);
    section[16] = '\xff';
    EXPECT_THROW_MESSAGE(readBinary(section), FormatException, "section ends early");
}

/// A section of version 0x8101 as old devices wrote it: the opening and the size in the given
/// order, behind them coded dates and words, all little-endian.
std::string codedSection(const std::string& openingAndSize, int valueCount) {
    LittleEndian section;
    section.raw(openingAndSize).raw(bytes("12 31 23 17 58 59")).put(Poco::UInt16{3});
    for (int i = 1; i <= valueCount; ++i) {
        const auto bits = std::bit_cast<std::uint64_t>(i + 0.25);
        for (int shift = 48; shift >= 0; shift -= 16) {
            section.put(static_cast<Poco::UInt16>(bits >> shift));
        }
    }
    return section.text();
}

TEST(CodedCalibTest, IsLittleEndianBehindItsSizeWithCodedDates) {
    const std::string big = kMagic + bytes("8036 8101 00000000000000e0");
    const std::string little =
        LittleEndian().words(0x8036, 0x8101).put(Poco::UInt64{32 + 24 * 8}).text();
    for (const std::string& opening : {big, little}) {
        const auto read = readBinary(codedSection(opening, 24));
        EXPECT_EQ(read.config.getCalibVersion(), 0x8101);
        EXPECT_FALSE(read.config.isBigEndian());
        EXPECT_EQ(read.config.getCalibTime(), Poco::DateTime(2017, 12, 31, 23, 59, 58));
        EXPECT_EQ(read.config.getCalibFormat(), 3);
        ASSERT_EQ(read.config.getCalibCount(), 4U);
        Eigen::MatrixXd gain(3, 3);
        gain << 1, 2, 3, 4, 5, 6, 7, 8, 9;
        EXPECT_EQ(doublesOf(read.config, 0), ((gain.array() + 0.25) * 2).matrix());
        EXPECT_EQ(doublesOf(read.config, 1), Eigen::RowVector3d(10.25, 11.25, 12.25));
        EXPECT_EQ(doublesOf(read.config, 2), (gain.array() + 12.25).matrix());
    }
}

}  // namespace
}  // namespace SensorFile
