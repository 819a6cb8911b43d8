#include "filters/common/FilePath.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <Poco/Path.h>
#include <gtest/gtest.h>

using Filters::makeFilePath;
using Filters::openWriter;
using SensorFile::SensorFileConfig;
using SensorFile::SensorFileWriter;
using Support::expectThrow;

TEST(FilePathTest, RelativePathsBecomeAbsolute) {
    EXPECT_EQ(makeFilePath("data/a.sf").text, Poco::Path::current() + "data/a.sf");
    EXPECT_TRUE(makeFilePath("data/a.sf").hasFileName);
}

TEST(FilePathTest, AbsolutePathsStayAsTheyAre) {
    EXPECT_EQ(makeFilePath("/data/a.sf").text, "/data/a.sf");
}

TEST(FilePathTest, EmptyPathsAndFoldersHaveNoFileName) {
    EXPECT_FALSE(makeFilePath("").hasFileName);
    EXPECT_FALSE(makeFilePath("data/").hasFileName);
    EXPECT_FALSE(makeFilePath("/").hasFileName);
}

TEST(FilePathTest, WriterIsOpenedOnAFileThatDoesNotExistYet) {
    const Support::TemporaryFolder folder;
    SensorFileWriter writer;
    openWriter(writer, folder.file("new.sf"), SensorFileConfig(), /*binary=*/true,
               /*writeHeaders=*/false);
    EXPECT_TRUE(writer.isOpen());
}

TEST(FilePathTest, WriterIsNotOpenedWithoutAFileName) {
    SensorFileWriter writer;
    expectThrow<Poco::IOException>("File not found : " + Poco::Path::current() + "data/", [&] {
        openWriter(writer, "data/", SensorFileConfig(), true, false);
    });
    EXPECT_FALSE(writer.isOpen());
}

TEST(FilePathTest, FileThatCannotBeOpenedIsNamed) {
    const Support::TemporaryFolder folder;
    SensorFileWriter writer;
    const std::string path = folder.file("missing/a.sf");
    expectThrow<Poco::IOException>("Problem while openning : " + path, [&] {
        openWriter(writer, path, SensorFileConfig(), true, false);
    });
    expectThrow<Poco::IOException>("Problem while openning : " + folder.path(), [&] {
        openWriter(writer, folder.path(), SensorFileConfig(), true, false);
    });
    EXPECT_FALSE(writer.isOpen());
}
