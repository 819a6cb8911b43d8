// Which files open, and what is said of those that do not.

#include "sensorfile/FormatException.hpp"
#include "tests/sensorfile/ReaderFixture.hpp"

#include <memory>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

using ReaderOpeningTest = ReaderTest;

TEST_F(ReaderOpeningTest, OpeningReadsAllSections) {
    for (const bool binary : {false, true}) {
        auto config = configOfTypes({9, 14});
        config.setSampleFrequency(819.2);
        config.addCalibData("Gain1", Eigen::MatrixXd::Identity(3, 3));
        open(config, binary, "");
        EXPECT_TRUE(reader.isOpen());
        EXPECT_TRUE(reader.areHeadersValid());
        EXPECT_EQ(reader.isBinary(), binary);
        EXPECT_EQ(openingOf(reader.getConfig(), binary), openingOf(config, binary));
        EXPECT_FALSE(reader.getConfig().isCalibOnly());
    }
}

TEST_F(ReaderOpeningTest, TheCalibrationSectionMayBeMissing) {
    const auto config = configOfTypes({14});
    file.setContent(headerBytes(config) + dataBytes(config) + bytes("0007"));
    reader.open(file.path(), true);
    EXPECT_EQ(nextDouble(), 7.0);
    reader.close();
    file.setContent(headerText(config) + dataText(config) + "7\t\n");
    reader.open(file.path(), false);
    EXPECT_EQ(nextDouble(), 7.0);
}

TEST_F(ReaderOpeningTest, OpenDoesNothingWhenAlreadyOpen) {
    openBinary({14}, "0007");
    reader.open("/nowhere", false);
    EXPECT_TRUE(reader.isBinary());
    EXPECT_EQ(nextDouble(), 7.0);
}

TEST_F(ReaderOpeningTest, ACalibrationFileHoldsItsRecordsAndNoSamples) {
    for (const bool binary : {false, true}) {
        reader.close();
        SensorFileConfig config;
        config.setCalibOnly(true);
        config.setCalibTime({2017, 1, 2, 3, 4, 5});
        config.addCalibData("G", Eigen::MatrixXi::Constant(2, 2, -7));
        file.setContent(openingOf(config, binary));
        reader.open(file.path(), binary);
        EXPECT_TRUE(reader.getConfig().isCalibOnly());
        EXPECT_TRUE(reader.areHeadersValid());
        EXPECT_EQ(openingOf(reader.getConfig(), binary), openingOf(config, binary));
        double value = 0;
        EXPECT_FALSE(reader.readRow({&value, 1}));
        EXPECT_TRUE(reader.read(&value, 1));
        EXPECT_TRUE(reader.isEof());
        reader.rewind();
        EXPECT_TRUE(reader.read(&value, 1));
        EXPECT_TRUE(reader.isEof());
    }
}

TEST_F(ReaderOpeningTest, RewindGoesToTheEndOfTheSectionOfACalibrationFile) {
    SensorFileConfig config;
    config.setCalibOnly(true);
    config.setCalibTime({2017, 1, 2});
    config.addCalibData("G", Eigen::MatrixXd::Ones(1, 1));
    const std::string section = openingOf(config, true);
    file.setContent(section + bytes("07"));
    reader.open(file.path(), true);
    EXPECT_TRUE(reader.isEof());
    reader.rewind();
    EXPECT_EQ(reader.position(), static_cast<std::int64_t>(section.size()));
    EXPECT_EQ(reader.readByte(), 7);
}

TEST_F(ReaderOpeningTest, ASectionBehindACalibrationFileIsAFormatError) {
    for (const bool binary : {false, true}) {
        SensorFileConfig config;
        config.setCalibTime({2017, 1, 2});
        config.setCalibOnly(true);
        const std::string section = openingOf(config, binary);
        file.setContent(section + (binary ? "" : "\n") + section);
        expectFormatError(binary, "a section follows the calibration section");
    }
}

TEST_F(ReaderOpeningTest, TheFirstSectionIsNotSeenAgainAtTheEndOfACalibrationFile) {
    SensorFileConfig config;
    config.setCalibTime({2017, 1, 2});
    config.setCalibOnly(true);
    file.setContent(openingOf(config, true) + bytes("af243246 56fe"));
    EXPECT_NO_THROW(reader.open(file.path(), true));
}

TEST_F(ReaderOpeningTest, TheWrongEncodingIsTold) {
    const auto config = configOfTypes({9});
    for (const bool binary : {false, true}) {
        file.setContent(openingOf(config, !binary));
        EXPECT_THROW_MESSAGE(reader.open(file.path(), binary), Poco::DataException,
                             formatError() + ", check binary mode!");
        expectClosed();
    }
}

TEST_F(ReaderOpeningTest, ALongBinaryFileWithoutBlanksIsToldFromText) {
    auto config = configOfTypes({14});
    config.setCalibTime({2017, 5, 23, 17, 4, 31});  // its bytes are no blanks, either
    file.setContent(openingOf(config, true) + std::string(200'000, '\0'));
    EXPECT_THROW_MESSAGE(reader.open(file.path(), false), Poco::DataException,
                         formatError() + ", check binary mode!");
    expectClosed();
}

TEST_F(ReaderOpeningTest, AnyLongRestBehindATextCalibrationFileIsNoSection) {
    SensorFileConfig config;
    config.setCalibTime({2017, 1, 2});
    config.setCalibOnly(true);
    file.setContent(openingOf(config, false) + "a b " + std::string(100'000, 'x'));
    EXPECT_NO_THROW(reader.open(file.path(), false));
    EXPECT_TRUE(reader.getConfig().isCalibOnly());
}

TEST_F(ReaderOpeningTest, SamplesFollowTheirOwnOrderBehindACodedCalibration) {
    const auto config = configOfTypes({14});
    const std::string coded = bytes(
        "af243246 56fe1289 9078bc29 8036 8101 0000000000000028 052310173104 0200"
        "f03f000000000000");
    file.setContent(headerBytes(config) + coded + dataBytes(config) + bytes("0102"));
    reader.open(file.path(), true);
    EXPECT_EQ(reader.getConfig().getCalibVersion(), 0x8101);
    EXPECT_TRUE(reader.getConfig().isBigEndian());
    EXPECT_EQ(nextDouble(), 258.0);
    reader.close();
    const std::string littleData = bytes("463224af 8912fe56 29bc7890 3580 0001");
    file.setContent(headerBytes(config) + coded + littleData + bytes("0201"));
    reader.open(file.path(), true);
    EXPECT_FALSE(reader.getConfig().isBigEndian());
    EXPECT_EQ(nextDouble(), 258.0);
}

TEST_F(ReaderOpeningTest, AnEmptyFileOrADataSectionAloneIsNotRecognised) {
    for (const bool binary : {false, true}) {
        file.setContent("");
        EXPECT_THROW_MESSAGE(reader.open(file.path(), binary), Poco::DataException,
                             formatError() + ", check binary mode!");
        file.setContent(binary ? dataBytes({}) : dataText({}));
        EXPECT_THROW_MESSAGE(reader.open(file.path(), binary), Poco::DataException,
                             formatError() + ", check binary mode!");
        expectClosed();
    }
}

TEST_F(ReaderOpeningTest, AHeaderWithoutADataSectionIsAFormatError) {
    const auto config = configOfTypes({9});
    for (const bool binary : {false, true}) {
        file.setContent(binary ? headerBytes(config) : headerText(config));
        expectFormatError(binary, "no data section found");
        file.setContent(binary ? headerBytes(config) + calibBytes(config)
                               : headerText(config) + calibText(config));
        expectFormatError(binary, "no data section found");
        file.setContent(binary ? headerBytes(config) + headerBytes(config)
                               : headerText(config) + headerText(config));
        expectFormatError(binary, "no data section found");
    }
}

TEST_F(ReaderOpeningTest, AColumnOfImpossibleSizeIsAFormatError) {
    std::string header = headerBytes(configOfTypes({9}));
    header[header.size() - 34] = '\3';
    header[header.size() - 33] = '\0';
    file.setContent(header + dataBytes({}));
    expectFormatError(true, "a column has an impossible size");
}

TEST_F(ReaderOpeningTest, ABadDateIsAFormatError) {
    std::string opening = openingOf(configOfTypes({9}), true);
    opening[24] = '\x20';
    file.setContent(opening);
    expectFormatError(true, "no such date: 32/5/2017 10:4:31");
}

TEST_F(ReaderOpeningTest, ATornCalibrationFileIsAFormatError) {
    SensorFileConfig config;
    config.setCalibTime({2017, 1, 2});
    config.setCalibOnly(true);
    config.addCalibData("G", Eigen::MatrixXd::Identity(3, 3));
    const std::string section = calibBytes(config);
    file.setContent(section.substr(0, section.size() - 1));
    expectFormatError(true, "section ends early");
}

TEST_F(ReaderOpeningTest, UnknownTypesKeepTheirMessage) {
    const auto config = configOfTypes({9});
    std::string header = headerBytes(config);
    header[header.size() - 33] = '\x63';
    file.setContent(header + dataBytes(config));
    EXPECT_THROW_MESSAGE(reader.open(file.path(), true), Poco::DataException,
                         "Column type is not compatible with SensorFile format");
    expectClosed();
}

TEST_F(ReaderOpeningTest, RecordsOfUnknownElementsKeepTheirMessage) {
    const auto config = configOfTypes({9});
    std::string calib = calibText(config);
    calib.replace(calib.rfind("0\t"), 2, "1\t\nG\tfloat\t(1, 1)");
    file.setContent(headerText(config) + calib + dataText(config));
    EXPECT_THROW_MESSAGE(reader.open(file.path(), false), Poco::DataException,
                         "Data type format is not supported!");
    expectClosed();
}

TEST_F(ReaderOpeningTest, AMissingFileNamesItsPath) {
    const std::string path = file.path() + ".none";
    try {
        reader.open(path, true);
        ADD_FAILURE() << "opened";
    } catch (const Poco::FileNotFoundException& e) {
        EXPECT_NE(e.message().find(path), std::string::npos);
    }
    expectClosed();
}

TEST_F(ReaderOpeningTest, AFolderCannotBeRead) {
    const std::string folder = std::filesystem::temp_directory_path().string();
    for (const bool binary : {false, true}) {
        try {
            reader.open(folder, binary);
            ADD_FAILURE() << "opened";
        } catch (const Poco::FileException& e) {
            EXPECT_NE(e.message().find(folder), std::string::npos) << e.displayText();
        }
        expectClosed();
    }
}

TEST_F(ReaderOpeningTest, AfterAFailureAnotherFileCanBeOpened) {
    EXPECT_THROW(reader.open("/nowhere/at/all", true), Poco::FileException);
    openBinary({14}, "0102");
    EXPECT_EQ(nextDouble(), 258.0);
}

TEST_F(ReaderOpeningTest, FormatExceptionsCanBeCloned) {
    const FormatException original("cause");
    const std::unique_ptr<Poco::Exception> copy(original.clone());
    EXPECT_THROW_MESSAGE(copy->rethrow(), FormatException, "cause");
    EXPECT_STREQ(copy->name(), "Format exception");
    EXPECT_STREQ(copy->className(), "SensorFile::FormatException");
}

}  // namespace
}  // namespace SensorFile
