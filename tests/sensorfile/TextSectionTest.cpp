#include "sensorfile/FormatException.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <sstream>

#include <Poco/Exception.h>

// The sections of text files: exact text out, every reading rule in.

namespace SensorFile {
namespace {

constexpr const char* kHeaderStart =
    "Header id: \taf243246\t56fe1289\t9078bc29\t80340101\t\n"
    "23/05/2017\t10:04:31\n"
    "Sample frequency:\t200 (Hz)\n";

const std::string kCalibOpening = "Calib id: \taf243246\t56fe1289\t9078bc29\t80360200\t\n";

/// Reads an opening and the section behind it.
SensorFileConfig readText(const std::string& text) {
    SensorFileConfig config;
    std::istringstream in(text);
    switch (config.readSectionId(in, false)) {
        case SensorFileConfig::kHeaderSection:
            EXPECT_TRUE(config.readColumns(in, false));
            break;
        case SensorFileConfig::kCalibSection:
            EXPECT_TRUE(config.readCalibSection(in, false));
            break;
        default:
            ADD_FAILURE() << "no section in " << text;
    }
    return config;
}

int sectionOf(const std::string& text) {
    std::istringstream in(text);
    return SensorFileConfig().readSectionId(in, false);
}

const Eigen::MatrixXd& doublesOf(const SensorFileConfig& config, std::size_t index) {
    return dynamic_cast<const CalibData<Eigen::MatrixXd>&>(config.getCalibData(index)).getMatrix();
}

const Eigen::MatrixXi& intsOf(const SensorFileConfig& config, std::size_t index) {
    return dynamic_cast<const CalibData<Eigen::MatrixXi>&>(config.getCalibData(index)).getMatrix();
}

SensorFileConfig calibConfig() {
    auto config = configOf({});
    Eigen::MatrixXd gain(2, 3);
    gain << 1, 0.1, -2.5, 1e-7, 123456789012345678.0, 0;
    config.addCalibData("Gain 1", gain);
    Eigen::MatrixXi counts(2, 1);
    counts << -5, 2147483647;
    config.addCalibData("Counts", counts);
    return config;
}

TEST(TextHeaderTest, HoldsDateFrequencyAndColumnsLineByLine) {
    EXPECT_EQ(
        headerText(configOf({{"ACCX", 14}, {"TIME", 9}})),
        std::string(kHeaderStart) + "2 column(s):\tACCX\tint16\t(2) \tTIME\tdouble\t(8) \t\n");
}

TEST(TextHeaderTest, WithoutColumnsEndsBehindTheLabel) {
    EXPECT_EQ(headerText(configOf({})), std::string(kHeaderStart) + "0 column(s):\t\n");
}

TEST(TextHeaderTest, FrequencyHasFifteenDigits) {
    auto config = configOf({});
    config.setSampleFrequency(819.2000000000001);
    EXPECT_NE(headerText(config).find("\t819.2 (Hz)"), std::string::npos);
    config.setSampleFrequency(1.0 / 3.0);
    EXPECT_NE(headerText(config).find("\t0.333333333333333 (Hz)"), std::string::npos);
    config.setSampleFrequency(1e20);
    EXPECT_NE(headerText(config).find("\t1e+20 (Hz)"), std::string::npos);
}

TEST(TextHeaderTest, OlderVersionRoundsTheFrequencyToAnInteger) {
    auto config = configOf({});
    config.setHeaderVersion(0x0100);
    config.setSampleFrequency(199.5);
    EXPECT_NE(headerText(config).find("80340100\t\n"), std::string::npos);
    EXPECT_NE(headerText(config).find("\t200 (Hz)"), std::string::npos);
    config.setSampleFrequency(65536.2);
    EXPECT_NE(headerText(config).find("\t0 (Hz)"), std::string::npos);
}

TEST(TextHeaderTest, IsTheSameWhateverLocaleAndStreamFlags) {
    auto config = calibConfig();
    config.addColumn("a", 9);
    config.setSampleFrequency(1234567.5);
    const std::string expected = openingOf(config, false);
    const CommaLocale comma;
    std::ostringstream out;
    out << std::hex << std::showpos << std::uppercase;
    out.fill('*');
    config.writeHeaderSection(out, false);
    config.writeCalibSection(out, false);
    config.writeDataSection(out, false);
    EXPECT_EQ(out.str(), expected);
    std::istringstream in(out.str());
    in >> std::hex;
    SensorFileConfig read;
    EXPECT_EQ(read.readSectionId(in, false), SensorFileConfig::kHeaderSection);
    EXPECT_TRUE(read.readColumns(in, false));
    EXPECT_EQ(read.getSampleFrequency(), 1234567.5);
    EXPECT_EQ(read.readSectionId(in, false), SensorFileConfig::kCalibSection);
    EXPECT_TRUE(read.readCalibSection(in, false));
    EXPECT_EQ(calibText(read), calibText(config));
    EXPECT_EQ(read.readSectionId(in, false), SensorFileConfig::kDataSection);
}

TEST(TextHeaderTest, ReadsBackWhatWasWritten) {
    auto config = configOf({{"ACC X", 14}, {"", 9}, {"c", 2}});
    config.setSampleFrequency(819.25);
    const auto read = readText(headerText(config));
    EXPECT_EQ(headerText(read), headerText(config));
    EXPECT_EQ(read.getColumn(0).getName(), "ACC X");
    EXPECT_EQ(read.getColumn(2).getTypeName(), "unsigned char");
    EXPECT_EQ(read.getHeaderSize(), 40U + 3 * 34);
}

TEST(TextHeaderTest, AFortyCharacterNameStaysWhole) {
    const std::string name(40, 'x');
    EXPECT_EQ(readText(headerText(configOf({{name, 9}}))).getColumn(0).getName(), name);
}

TEST(TextHeaderTest, LabelsSeparatorsAndSizesDoNotMatter) {
    const auto read = readText(
        "Kopf nummer:\r\naf243246 56fe1289 9078bc29 80340100\r\n8.9-2020 7h08m09\r\n"
        "Takt gleich 50 Hz\r\n 1 Spalten sind:\tT\tui8\t(77)\t\r\n");
    EXPECT_EQ(read.getCreationTime(), Poco::DateTime(2020, 9, 8, 7, 8, 9));
    EXPECT_EQ(read.getSampleFrequency(), 50.0);
    EXPECT_EQ(read.getHeaderVersion(), 0x0100);
    EXPECT_EQ(read.getColumn(0).getTypeCode(), 11);
    EXPECT_EQ(read.getColumn(0).getSize(), 1U);
}

TEST(TextHeaderTest, TypeAliasesAreAccepted) {
    const auto read = readText(std::string(kHeaderStart) + "2 column(s):\ta\tchar\t\tb\t00\t\t\n");
    EXPECT_EQ(read.getColumn(0).getTypeName(), "signed char");
    EXPECT_EQ(read.getColumn(1).getTypeCode(), 4);
}

TEST(TextHeaderTest, AnUnknownTypeIsRefused) {
    EXPECT_THROW_MESSAGE(readText(std::string(kHeaderStart) + "1 column(s):\ta\tUINT8\t(1) \t\n"),
                         Poco::DataException,
                         "Column type is not compatible with SensorFile format");
}

TEST(TextHeaderTest, WhatCannotBeUnderstoodIsNamed) {
    const std::string opening = "Header id: \taf243246\t56fe1289\t9078bc29\t80340101\t\n";
    EXPECT_THROW_MESSAGE(readText(opening + "31/02/2017\t10:04:31\n"), FormatException,
                         "no such date: 31/2/2017 10:4:31");
    EXPECT_THROW_MESSAGE(readText(opening + "99999999999/02/2017\t10:04:31\n"), FormatException,
                         "no such date: -1/2/2017 10:4:31");
    EXPECT_THROW_MESSAGE(readText(opening + "x"), FormatException, "no number for a date");
    EXPECT_THROW_MESSAGE(readText(opening + "1/2/2017 1:2:3 a b c"), FormatException,
                         "no number for the sample frequency");
    EXPECT_THROW_MESSAGE(readText(opening + "1/2/2017 1:2:3 a b 200,5 (Hz)\n0 c:\t"),
                         FormatException, "no number for the sample frequency");
    EXPECT_THROW_MESSAGE(readText(std::string(kHeaderStart) + "x"), FormatException,
                         "no number for the column count");
    EXPECT_THROW_MESSAGE(readText(std::string(kHeaderStart) + "-1 column(s):\t"), FormatException,
                         "column count is negative");
    EXPECT_THROW_MESSAGE(readText(std::string(kHeaderStart) + "9223372036854775807 x:\ta\t"),
                         FormatException, "section ends early");
    EXPECT_THROW_MESSAGE(readText(opening + std::string(70'000, '1')), FormatException,
                         "section holds an endless number");
    EXPECT_THROW_MESSAGE(
        readText(std::string(kHeaderStart) + "1 c:\t" + std::string(70'000, 'x') + "\t"),
        FormatException, "section holds an endless field");
    EXPECT_THROW_MESSAGE(readText(opening + "1/2/2017 1:2:3 a b " + std::string(70'000, '1')),
                         FormatException, "section holds an endless word");
}

TEST(TextOpeningTest, IdsSelectTheSection) {
    EXPECT_EQ(sectionOf("Header id: \taf243246\t56fe1289\t9078bc29\t80340101\t\n"), 0);
    EXPECT_EQ(sectionOf("\nCalib id: \taf243246\t56fe1289\t9078bc29\t80360200\t\n"), 1);
    EXPECT_EQ(sectionOf("\nData id: \taf243246\t56fe1289\t9078bc29\t80350100\t\n"), 2);
    EXPECT_EQ(sectionOf("Header id: \taf243246\t56fe1289\t9078bc29\t80370100\t\n"), 3);
}

TEST(TextOpeningTest, TheVersionOfEachSectionIsKept) {
    auto config = configOf({});
    config.setHeaderVersion(0x0001);
    config.setCalibVersion(0x0234);
    config.setDataVersion(0xfedc);
    std::istringstream in(openingOf(config, false));
    SensorFileConfig read;
    EXPECT_EQ(read.readSectionId(in, false), SensorFileConfig::kHeaderSection);
    EXPECT_TRUE(read.readColumns(in, false));
    EXPECT_EQ(read.readSectionId(in, false), SensorFileConfig::kCalibSection);
    EXPECT_TRUE(read.readCalibSection(in, false));
    EXPECT_EQ(read.readSectionId(in, false), SensorFileConfig::kDataSection);
    EXPECT_EQ(read.getHeaderVersion(), 0x0001);
    EXPECT_EQ(read.getCalibVersion(), 0x0234);
    EXPECT_EQ(read.getDataVersion(), 0xfedc);
}

TEST(TextOpeningTest, WhatFollowsTheVersionInItsWordIsNotRead) {
    EXPECT_EQ(sectionOf("Data id: af243246 56fe1289 9078bc29 80350100x"), 2);
}

TEST(TextOpeningTest, AnythingElseIsNotRecognised) {
    for (const char* text :
         {"", " ", "Header", "Header id:", "Header id: \taf243246\t56fe1289\t9078bc29\t",
          "Header id: \taf243247\t56fe1289\t9078bc29\t80340101\t",
          "Header id: \taf243246\t56fe1288\t9078bc29\t80340101\t",
          "Header id: \taf243246\t56fe1289\t9078bc28\t80340101\t",
          "Header id: \taf243246\t56fe1289\t9078bc29\t8034010\t",
          "Header id: \taf243246\t56fe1289\t9078bc29\t8034x101\t",
          "Header id: \taf243246x\t56fe1289\t9078bc29\t80340101\t",
          "Header id: \t463224af\t8912fe56\t29bc7890\t34800101\t"}) {
        EXPECT_EQ(sectionOf(text), SensorFileConfig::kNoSection) << text;
    }
}

TEST(TextOpeningTest, AWordWithoutEndIsNoSection) {
    const std::string endless(70'000, '0');
    EXPECT_EQ(sectionOf(endless), SensorFileConfig::kNoSection);
    EXPECT_EQ(sectionOf("Header id: " + endless), SensorFileConfig::kNoSection);
    EXPECT_EQ(sectionOf("Header id: af243246 56fe1289 9078bc29 " + endless),
              SensorFileConfig::kNoSection);
}

TEST(TextOpeningTest, AFailedStreamHoldsNoSection) {
    std::istringstream in(headerText(configOf({})));
    in.setstate(std::ios::failbit);
    EXPECT_EQ(SensorFileConfig().readSectionId(in, false), SensorFileConfig::kNoSection);
}

TEST(TextOpeningTest, HexadecimalDigitsMayBeUpperCase) {
    EXPECT_EQ(sectionOf("Data id: AF243246 56FE1289 9078BC29 80350100"), 2);
}

TEST(TextDataTest, HasAnEmptyLineInFront) {
    EXPECT_EQ(dataText(configOf({})), "\nData id: \taf243246\t56fe1289\t9078bc29\t80350100\t\n");
}

TEST(TextCalibTest, HoldsNamedRecordsRowByRow) {
    EXPECT_EQ(calibText(calibConfig()), "\n" + kCalibOpening +
                                            "Calib datetime:\t01/12/2016\t08:00:09\n"
                                            "Calib version:\t2\t\n"
                                            "Number of Calibration coefficient:\t2\t\n"
                                            "Gain 1\tdouble\t(2, 3)\t\n"
                                            "1\t0.1\t-2.5\t\n"
                                            "1e-07\t1.23456789012346e+17\t0\t\n"
                                            "Counts\tint32\t(2, 1)\t\n"
                                            "-5\t\n"
                                            "2147483647\t\n");
}

TEST(TextCalibTest, ACalibrationFileStartsWithoutALineFeedAndHoldsNothingElse) {
    auto config = calibConfig();
    config.setCalibOnly(true);
    EXPECT_EQ(openingOf(config, false).find("Calib id: "), 0U);
    EXPECT_EQ(headerText(config), "");
    EXPECT_EQ(dataText(config), "");
    EXPECT_EQ(headerBytes(config), "");
    EXPECT_EQ(dataBytes(config), "");
}

TEST(TextCalibTest, OlderVersionsHoldBareValues) {
    for (const int version : {0x0100, 0x0101, 0x8101}) {
        auto config = calibConfig();
        config.setCalibVersion(static_cast<std::uint16_t>(version));
        const std::string text = calibText(config);
        EXPECT_NE(text.find("Calib version:\t2\t\nNumber of Calibration data:\t8\t\n"
                            "1\t0.1\t-2.5\t\n1e-07\t1.23456789012346e+17\t0\t\n-5\t\n"
                            "2147483647\t\n"),
                  std::string::npos)
            << text;
    }
}

TEST(TextCalibTest, ReadsBackWhatWasWritten) {
    const auto config = calibConfig();
    const auto read = readText(calibText(config));
    EXPECT_EQ(calibText(read), calibText(config));
    EXPECT_EQ(read.getCalibName(0), "Gain 1");
    EXPECT_EQ(intsOf(read, 1), intsOf(config, 1));
    EXPECT_EQ(read.getCalibTime(), config.getCalibTime());
}

TEST(TextCalibTest, BlanksBeforeANameAreLostAndAnEmptyNameCannotBeRead) {
    SensorFileConfig config;
    config.setCalibTime({2017, 1, 1});
    config.addCalibData(" G 1 ", Eigen::MatrixXd::Ones(1, 1));
    EXPECT_EQ(readText(calibText(config)).getCalibName(0), "G 1 ");
    config.addCalibData("", Eigen::MatrixXd::Ones(1, 1));
    EXPECT_THROW_MESSAGE(readText(calibText(config)), Poco::DataException,
                         "Data type format is not supported!");
}

TEST(TextCalibTest, ZeroRecordsEndTheSection) {
    EXPECT_EQ(readText(calibText(configOf({}))).getCalibCount(), 0U);
}

TEST(TextCalibTest, EmptyMatricesReadBack) {
    SensorFileConfig config;
    config.setCalibTime({2017, 1, 1});
    config.addCalibData("None", Eigen::MatrixXd(0, 3));
    config.addCalibData("Neither", Eigen::MatrixXi(2, 0));
    config.addCalibData("One", Eigen::MatrixXi::Ones(1, 1));
    const auto read = readText(calibText(config));
    ASSERT_EQ(read.getCalibCount(), 3U);
    EXPECT_EQ(doublesOf(read, 0).cols(), 3);
    EXPECT_EQ(intsOf(read, 1).rows(), 2);
    EXPECT_EQ(intsOf(read, 2)(0, 0), 1);
}

TEST(TextCalibTest, NumbersThatAreNotFiniteReadBack) {
    SensorFileConfig config;
    config.setCalibTime({2017, 1, 1});
    Eigen::MatrixXd matrix(1, 3);
    matrix << std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN();
    config.addCalibData("G", matrix);
    const auto read = readText(calibText(config));
    EXPECT_EQ(doublesOf(read, 0)(0, 0), matrix(0, 0));
    EXPECT_EQ(doublesOf(read, 0)(0, 1), matrix(0, 1));
    EXPECT_TRUE(std::isnan(doublesOf(read, 0)(0, 2)));
}

TEST(TextCalibTest, OtherElementTypesAreRefused) {
    const std::string start = kCalibOpening + "a b 1/2/2017 1:2:3 a b 2 a b c d ";
    EXPECT_THROW_MESSAGE(readText(start + "1\t\nG\tfloat\t(1, 1)\t\n1\t\n"), Poco::DataException,
                         "Data type format is not supported!");
}

TEST(TextCalibTest, AFormatNumberBeyondSixteenBitsIsRefused) {
    for (const char* number : {"65536", "65538", "-1"}) {
        EXPECT_THROW_MESSAGE(
            readText(kCalibOpening + "a b 1/2/2017 1:2:3 a b " + number + " a b c d 0\t\n"),
            FormatException, "calibration format does not fit its 16 bits");
    }
    EXPECT_EQ(
        readText(kCalibOpening + "a b 1/2/2017 1:2:3 a b 65535 a b c d 0\t\n").getCalibFormat(),
        65535);
}

TEST(TextCalibTest, AMatrixWithoutValuesKeepsItsSize) {
    const SensorFileConfig read =
        readText(kCalibOpening + "a b 1/2/2017 1:2:3 a b 2 a b c d 2\t\n" +
                 "G\tdouble\t(255, 0)\t\nO\tint32\t(0, 255)\t\n");
    ASSERT_EQ(read.getCalibCount(), 2U);
    EXPECT_EQ(read.getCalibData(0).rows(), 255U);
    EXPECT_EQ(read.getCalibData(1).cols(), 255U);
}

TEST(TextCalibTest, WhatCannotBeUnderstoodIsNamed) {
    const std::string start = kCalibOpening + "a b 1/2/2017 1:2:3 a b 2 a b c d ";
    const std::pair<const char*, const char*> cases[] = {
        {"", "no number for the count of calibration records"},
        {"-1", "count of calibration records is negative"},
        {"18446744073709551615", "no number for the count of calibration records"},
        {"9223372036854775807\t\n", "section ends early"},
        {"1\t\nG\tdouble\t1, 1)", "expected '(' in the calibration section"},
        {"1\t\nG\tdouble\t(1; 1)", "expected ',' in the calibration section"},
        {"1\t\nG\tdouble\t(1, 1]", "expected ')' in the calibration section"},
        {"1\t\nG\tdouble\t(x, 1)", "no number for a matrix's rows"},
        {"1\t\nG\tdouble\t(1, )", "no number for a matrix's columns"},
        {"1\t\nG\tdouble\t(-1, 1)", "a matrix has an impossible size"},
        {"1\t\nG\tdouble\t(1, -1)", "a matrix has an impossible size"},
        {"1\t\nG\tdouble\t(4294967296, 0)", "a matrix has an impossible size"},
        {"1\t\nG\tdouble\t(0, 4294967296)", "a matrix has an impossible size"},
        {"1\t\nG\tdouble\t(65536, 65536)", "a matrix has an impossible size"},
        // Written again, its rows would take two gigabytes.
        {"1\t\nG\tdouble\t(2147483647, 0)", "a matrix has an impossible size"},
        {"1\t\nG\tint32\t(256, 0)", "a matrix has an impossible size"},
        {"1\t\nG\tint32\t(0, 256)", "a matrix has an impossible size"},
        {"1\t\nG\tdouble\t(30000, 30000)\t\n1\t", "no number for a calibration value"},
        {"1\t\nG\tint32\t(1, 1)\t\n2147483648\t", "no number for a calibration value"},
        {"1\t\nG\tint32\t(1, 1)\t\n3.7\t", "no number for a calibration value"},
        {"1\t\nG\tdouble\t(1, 1)\t\n1.5x\t", "no number for a calibration value"},
        {"1\t\nG\tdouble\t(1, 2)\t\n1,5\t2\t", "no number for a calibration value"},
    };
    for (const auto& [rest, message] : cases) {
        EXPECT_THROW_MESSAGE(readText(start + rest), FormatException, message);
    }
}

}  // namespace
}  // namespace SensorFile
