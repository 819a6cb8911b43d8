#include "sensorfile/SensorFileConfig.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

using FloatMatrix = Eigen::MatrixXf;

std::vector<std::string> namesOf(const SensorFileConfig& config) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        names.push_back(config.getColumn(i).getName());
    }
    return names;
}

TEST(SensorFileConfigTest, DefaultsAreThoseOfTheFormat) {
    const SensorFileConfig config;
    EXPECT_TRUE(config.isBigEndian());
    EXPECT_FALSE(config.isCalibOnly());
    EXPECT_EQ(config.getHeaderSize(), 40U);
    EXPECT_EQ(config.getCalibFormat(), 2);
    EXPECT_EQ(config.getSampleFrequency(), 200.0);
    EXPECT_EQ(config.getDoublePrecision(), 5);
    EXPECT_EQ(config.getHeaderVersion(), 0x0101);
    EXPECT_EQ(config.getCalibVersion(), 0x0200);
    EXPECT_EQ(config.getDataVersion(), 0x0100);
    EXPECT_EQ(config.getColumnCount(), 0U);
    EXPECT_EQ(config.getCalibCount(), 0U);
    EXPECT_FALSE(config.hasCreationTime());
    EXPECT_FALSE(config.hasCalibTime());
    EXPECT_EQ(config.getCreationTime(), SensorFileConfig::zeroTime());
}

TEST(SensorFileConfigTest, SettersKeepWhatTheyAreGiven) {
    SensorFileConfig config;
    const Poco::DateTime date(2020, 2, 29, 23, 59, 59);
    config.setSampleFrequency(819.2);
    config.setDoublePrecision(9);
    config.setCreationTime(date);
    config.setCalibTime(date);
    config.setCalibFormat(7);
    config.setHeaderVersion(0x0100);
    config.setCalibVersion(0x8101);
    config.setDataVersion(0x0200);
    config.setCalibOnly(true);
    config.setBigEndian(false);
    EXPECT_EQ(config.getSampleFrequency(), 819.2);
    EXPECT_EQ(config.getDoublePrecision(), 9);
    EXPECT_TRUE(config.hasCreationTime());
    EXPECT_EQ(config.getCreationTime(), date);
    EXPECT_TRUE(config.hasCalibTime());
    EXPECT_EQ(config.getCalibTime(), date);
    EXPECT_EQ(config.getCalibFormat(), 7);
    EXPECT_EQ(config.getHeaderVersion(), 0x0100);
    EXPECT_EQ(config.getCalibVersion(), 0x8101);
    EXPECT_EQ(config.getDataVersion(), 0x0200);
    EXPECT_TRUE(config.isCalibOnly());
    EXPECT_FALSE(config.isBigEndian());
}

TEST(SensorFileConfigTest, ColumnsAddThirtyFourBytesToTheHeader) {
    SensorFileConfig config;
    config.addColumn("ACCX", 14);
    config.addColumn("TIME", std::string("d"));
    EXPECT_EQ(config.getHeaderSize(), 108U);
    EXPECT_EQ(config.getColumn(0).getTypeName(), "int16");
    EXPECT_EQ(config.getColumn(1).getTypeName(), "double");
    config.removeColumn("ACCX");
    EXPECT_EQ(config.getHeaderSize(), 74U);
}

TEST(SensorFileConfigTest, AColumnOfUnknownTypeIsNotAdded) {
    constexpr const char* kMessage = "Column type is not compatible with SensorFile format";
    SensorFileConfig config;
    EXPECT_THROW_MESSAGE(config.addColumn("a", 1), Poco::DataException, kMessage);
    EXPECT_THROW_MESSAGE(config.addColumn("a", 19), Poco::DataException, kMessage);
    EXPECT_THROW_MESSAGE(config.addColumn("a", std::string("UINT8")), Poco::DataException,
                         kMessage);
    EXPECT_EQ(config.getColumnCount(), 0U);
    EXPECT_EQ(config.getHeaderSize(), 40U);
}

TEST(SensorFileConfigTest, CharIsWrittenBackAsSignedChar) {
    SensorFileConfig config;
    config.addColumn("a", std::string("char"));
    EXPECT_EQ(config.getColumn(0).getTypeCode(), 3);
    EXPECT_EQ(config.getColumn(0).getTypeName(), "signed char");
}

TEST(SensorFileConfigTest, RemoveColumnLeavesTheMatchRightBehindAnErasedOne) {
    auto config = configOf({{"x", 9}, {"x", 9}, {"a", 9}, {"x", 9}, {"x", 9}, {"x", 9}});
    config.removeColumn("x");
    EXPECT_EQ(namesOf(config), (std::vector<std::string>{"x", "a", "x"}));
    config.removeColumn("X");
    EXPECT_EQ(config.getColumnCount(), 3U);
}

TEST(SensorFileConfigTest, IndexesPastTheEndAreRefused) {
    auto config = configOf({{"a", 9}});
    config.addCalibData("G", Eigen::MatrixXd::Identity(2, 2));
    constexpr const char* kMessage = "Index out of range!";
    EXPECT_THROW_MESSAGE((void)config.getColumn(1), Poco::InvalidArgumentException, kMessage);
    EXPECT_THROW_MESSAGE((void)config.getCalibData(1), Poco::InvalidArgumentException, kMessage);
    EXPECT_THROW_MESSAGE((void)config.getCalibName(1), Poco::InvalidArgumentException, kMessage);
    EXPECT_EQ(config.getCalibName(0), "G");
}

TEST(SensorFileConfigTest, FindColumnGivesTheFirstExactMatch) {
    const auto config = configOf({{"a", 9}, {"b", 8}, {"b", 9}});
    std::size_t index = 99;
    EXPECT_TRUE(config.findColumn("b", index));
    EXPECT_EQ(index, 1U);
    index = 99;
    EXPECT_FALSE(config.findColumn("B", index));
    EXPECT_EQ(index, 99U);
}

TEST(SensorFileConfigTest, FindCalibDataGivesTheFirstExactMatchOrMinusOne) {
    SensorFileConfig config;
    EXPECT_EQ(config.findCalibData("Gain1"), -1);
    config.addCalibData("Offset1", Eigen::MatrixXd::Zero(1, 3));
    config.addCalibData("Gain1", Eigen::MatrixXd::Zero(3, 3));
    config.addCalibData("Gain1", Eigen::MatrixXi::Zero(3, 3));
    EXPECT_EQ(config.findCalibData("Gain1"), 1);
    EXPECT_EQ(config.findCalibData("gain1"), -1);
    config.clearCalibData();
    EXPECT_EQ(config.getCalibCount(), 0U);
}

TEST(SensorFileConfigTest, CopiesShareNothing) {
    auto original = configOf({{"a", 9}, {"b", 14}});
    original.addCalibData("G", Eigen::MatrixXd::Identity(2, 2));
    original.setDoublePrecision(3);
    SensorFileConfig copy;
    copy.addColumn("old", 9);
    copy = original;
    EXPECT_EQ(namesOf(copy), namesOf(original));
    EXPECT_NE(&copy.getColumn(0).getType(), &original.getColumn(0).getType());
    EXPECT_NE(&copy.getCalibData(0), &original.getCalibData(0));
    EXPECT_EQ(copy.getDoublePrecision(), 3);
    EXPECT_EQ(copy.getCreationTime(), original.getCreationTime());
    original.clearCalibData();
    original.removeColumn("a");
    EXPECT_EQ(copy.getColumnCount(), 2U);
    EXPECT_EQ(copy.getCalibCount(), 1U);
    const SensorFileConfig& self = copy;
    copy = self;
    EXPECT_EQ(copy.getCalibCount(), 1U);
    EXPECT_EQ(openingOf(SensorFileConfig(copy), true), openingOf(copy, true));
}

TEST(SensorFileConfigTest, CopiesHoldEveryField) {
    SensorFileConfig original;
    original.setBigEndian(false);
    original.setCalibOnly(true);
    original.setCalibTime({2001, 2, 3});
    original.setCalibFormat(7);
    original.setSampleFrequency(819.2);
    original.setDoublePrecision(9);
    original.setHeaderVersion(0x0100);
    original.setCalibVersion(0x8101);
    original.setDataVersion(0x0200);
    original.setCreationTime({2004, 5, 6});
    SensorFileConfig assigned;
    assigned = original;
    for (const SensorFileConfig& copy : {SensorFileConfig(original), assigned}) {
        EXPECT_FALSE(copy.isBigEndian());
        EXPECT_TRUE(copy.isCalibOnly());
        EXPECT_EQ(copy.getCalibTime(), original.getCalibTime());
        EXPECT_EQ(copy.getCalibFormat(), 7);
        EXPECT_EQ(copy.getSampleFrequency(), 819.2);
        EXPECT_EQ(copy.getDoublePrecision(), 9);
        EXPECT_EQ(copy.getHeaderVersion(), 0x0100);
        EXPECT_EQ(copy.getCalibVersion(), 0x8101);
        EXPECT_EQ(copy.getDataVersion(), 0x0200);
        EXPECT_EQ(copy.getCreationTime(), original.getCreationTime());
    }
}

TEST(SensorFileConfigTest, AMissingRecordIsRefused) {
    SensorFileConfig config;
    EXPECT_THROW(config.addCalibData(nullptr), Poco::NullPointerException);
}

TEST(SensorFileConfigTest, CalibSectionSizeCountsTheNamesOfNamedRecords) {
    SensorFileConfig config;
    EXPECT_EQ(config.getCalibSectionSize(), 32U);
    config.addCalibData("Gain1", Eigen::MatrixXd::Zero(3, 3));
    config.addCalibData("Counts", Eigen::MatrixXi::Zero(1, 2));
    EXPECT_EQ(config.getCalibSectionSize(), 32U + (5 + 3 + 72) + (6 + 3 + 8));
    for (const int version : {0x0100, 0x0101, 0x8101}) {
        config.setCalibVersion(static_cast<std::uint16_t>(version));
        EXPECT_EQ(config.getCalibSectionSize(), 32U + 72 + 16);
    }
}

TEST(CalibDataTest, RecordsOfDoublesAndIntsKnowTheirSizeAndType) {
    const CalibData<Eigen::MatrixXd> doubles("Gain", Eigen::MatrixXd::Ones(3, 2));
    EXPECT_EQ(doubles.getName(), "Gain");
    EXPECT_EQ(doubles.size(), 4U + 3 + 6 * 8);
    EXPECT_EQ(doubles.typeCode(), 9);
    EXPECT_EQ(doubles.typeName(), "double");
    EXPECT_EQ(doubles.rows(), 3U);
    EXPECT_EQ(doubles.cols(), 2U);
    const CalibData<Eigen::MatrixXi> ints("", Eigen::MatrixXi::Ones(1, 2));
    EXPECT_EQ(ints.size(), 0U + 3 + 2 * 4);
    EXPECT_EQ(ints.typeCode(), 7);
    EXPECT_EQ(ints.typeName(), "int32");
    EXPECT_EQ(ints.clone()->size(), ints.size());
}

TEST(CalibDataTest, TextGoesRowByRow) {
    Eigen::MatrixXd matrix(2, 2);
    matrix << 1, 2.5, -3, 0.1;
    const CommaLocale comma;
    EXPECT_EQ((CalibData<Eigen::MatrixXd>("G", matrix).toText()), "1 2.5\n-3 0.1");
    EXPECT_EQ((CalibData<Eigen::MatrixXi>("G", Eigen::MatrixXi(0, 0)).toText()), "");
}

TEST(CalibDataTest, OtherElementsAreRefused) {
    constexpr const char* kMessage = "Data format is not supported!";
    const CalibData<FloatMatrix> floats("F", FloatMatrix::Ones(1, 1));
    EXPECT_THROW_MESSAGE((void)floats.size(), Poco::DataException, kMessage);
    EXPECT_THROW_MESSAGE((void)floats.typeCode(), Poco::DataException, kMessage);
    EXPECT_THROW_MESSAGE((void)floats.typeName(), Poco::DataException, kMessage);
    EXPECT_EQ(floats.toText(), "1");
    SensorFileConfig config;
    config.addCalibData(floats.clone());
    for (const int version : {0x0200, 0x0101}) {
        config.setCalibVersion(static_cast<std::uint16_t>(version));
        EXPECT_THROW_MESSAGE(calibText(config), Poco::DataException, kMessage);
        EXPECT_THROW_MESSAGE(calibBytes(config), Poco::DataException, kMessage);
    }
}

}  // namespace
}  // namespace SensorFile
