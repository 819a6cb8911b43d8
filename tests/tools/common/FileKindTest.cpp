#include "sensorfile/ColumnType.hpp"
#include "sensorfile/Kivra2Calib.hpp"
#include "tests/sensorfile/TestSupport.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tools/common/FileKind.hpp"

#include <Poco/Exception.h>

namespace SensorFileTool {
namespace {

using SensorFile::bytes;

FileKind kindOf(const std::string& content) {
    const SensorFile::TemporaryFile file(content);
    return detectKind(InputFile(file.path()));
}

TEST(FileKindTest, RecordingsAreKnownByTheirOpening) {
    const auto config = SensorFile::configOfTypes({SensorFile::kInt16});
    EXPECT_EQ(kindOf(SensorFile::openingOf(config, true)), FileKind::kBinary);
    EXPECT_EQ(kindOf(SensorFile::openingOf(config, false)), FileKind::kText);
}

TEST(FileKindTest, CalibrationFilesAreKnownByTheirOpening) {
    auto config = SensorFile::configOf({});
    config.setCalibOnly(true);
    EXPECT_EQ(kindOf(SensorFile::calibBytes(config)), FileKind::kBinary);
    EXPECT_EQ(kindOf(SensorFile::calibText(config)), FileKind::kText);
}

TEST(FileKindTest, TheFirstBytesDecide) {
    EXPECT_EQ(kindOf(bytes("af243246")), FileKind::kBinary);
    EXPECT_EQ(kindOf(bytes("463224af")), FileKind::kBinary);
    EXPECT_EQ(kindOf("Header"), FileKind::kText);
    EXPECT_EQ(kindOf("Calib"), FileKind::kText);
}

TEST(FileKindTest, OtherBytesAreUnknown) {
    for (const std::string& content :
         {std::string(), std::string("Heade"), std::string("Cali"), std::string("header id"),
          std::string(" Header"), bytes("af2432"), bytes("af243247"), std::string(100, '\0')})
        EXPECT_EQ(kindOf(content), FileKind::kUnknown) << SensorFile::hexOf(content);
}

TEST(FileKindTest, Kivra2CalibrationsAreKnownByTheirSize) {
    const SensorFile::TemporaryFile file;
    SensorFile::Kivra2Calib().save(file.path());
    EXPECT_EQ(detectKind(InputFile(file.path())), FileKind::kKivra2Calib);
    EXPECT_EQ(kindOf(std::string(295, 'x')), FileKind::kUnknown);
    EXPECT_EQ(kindOf(std::string(297, 'x')), FileKind::kUnknown);
}

TEST(FileKindTest, AnOpeningCountsMoreThanTheSize) {
    EXPECT_EQ(kindOf("Header" + std::string(290, ' ')), FileKind::kText);
    EXPECT_EQ(kindOf(bytes("463224af") + std::string(292, ' ')), FileKind::kBinary);
}

TEST(FileKindTest, MissingFilesAndFoldersAreRefusedByTheirPath) {
    const Support::TemporaryFolder folder;
    EXPECT_THROW_MESSAGE(InputFile(folder.file("none")), Poco::FileNotFoundException,
                         folder.file("none"));
    EXPECT_THROW_MESSAGE(InputFile(folder.path()), Poco::ReadFileException,
                         folder.path() + " is a folder");
}

}  // namespace
}  // namespace SensorFileTool
