#include "filters/common/FilePath.hpp"
#include "tests/support/ExpectThrow.hpp"
#include "tests/support/FileSizeLimit.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <Poco/Path.h>
#include <gtest/gtest.h>

using Filters::makeFilePath;
using Filters::openReader;
using Filters::openWriter;
using Filters::requireFile;
using Filters::requireFileName;
using SensorFile::SensorFileConfig;
using SensorFile::SensorFileReader;
using SensorFile::SensorFileWriter;
using Support::expectThrow;

TEST(FilePathTest, NothingButSeparatorsAndDotsIsSpecial) {
    const std::string here = Poco::Path::current();
    for (const std::string name : {"take1:/a.sf", "~/a.sf", "a\nb.sf", "%s {} $HOME.sf", "-a.sf"})
        EXPECT_EQ(makeFilePath(name).text, here + name);
    EXPECT_EQ(makeFilePath("/take1:/a.sf").text, "/take1:/a.sf");
    EXPECT_TRUE(makeFilePath("~").hasFileName);
    EXPECT_FALSE(makeFilePath("").hasFileName);
}

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

TEST(FilePathTest, FileToWriteNeedNotExist) {
    EXPECT_EQ(requireFileName("/missing/a.sf"), "/missing/a.sf");
    EXPECT_EQ(requireFileName("data/a.sf"), Poco::Path::current() + "data/a.sf");
}

TEST(FilePathTest, FileToWriteNeedsAName) {
    expectThrow<Poco::IOException>("File not found : " + Poco::Path::current(),
                                   [] { (void)requireFileName(""); });
    expectThrow<Poco::IOException>("File not found : " + Poco::Path::current() + "data/",
                                   [] { (void)requireFileName("data/"); });
    expectThrow<Poco::IOException>("File not found : /", [] { (void)requireFileName("/"); });
}

TEST(FilePathTest, FileToReadMustExist) {
    const Support::TemporaryFolder folder;
    const std::string path = folder.file("a.sf");
    expectThrow<Poco::IOException>("File not found : " + path, [&] { (void)requireFile(path); });
    Support::writeBytes(path, "");
    EXPECT_EQ(requireFile(path), path);
}

TEST(FilePathTest, FolderIsNoFileToRead) {
    const Support::TemporaryFolder folder;
    expectThrow<Poco::IOException>("File not found : " + folder.path(),
                                   [&] { (void)requireFile(folder.path()); });
    expectThrow<Poco::IOException>("File not found : " + folder.path() + "/",
                                   [&] { (void)requireFile(folder.path() + "/"); });
    expectThrow<Poco::IOException>("File not found : " + Poco::Path::current(),
                                   [] { (void)requireFile(""); });
}

class OpenReaderTest : public testing::Test {
 protected:
    OpenReaderTest() {
        SensorFileConfig config;
        config.addColumn("a", 9);
        writeFile("a.sf", config);
        config.addColumn("b", 9);
        writeFile("b.sf", config);
    }

    void writeFile(const std::string& name, const SensorFileConfig& config) const {
        SensorFileWriter writer;
        writer.open(folder.file(name), config, /*binary=*/true, /*writeHeaders=*/true);
        writer.close();
    }

    Support::TemporaryFolder folder;
    SensorFileReader reader;
};

TEST_F(OpenReaderTest, FileIsOpened) {
    openReader(reader, folder.file("a.sf"), /*binary=*/true);
    EXPECT_TRUE(reader.isOpen());
    EXPECT_EQ(reader.getConfig().getColumnCount(), 1U);
}

TEST_F(OpenReaderTest, OpenReaderMovesToTheOtherFile) {
    openReader(reader, folder.file("a.sf"), true);
    openReader(reader, folder.file("b.sf"), true);
    EXPECT_EQ(reader.getConfig().getColumnCount(), 2U);
}

TEST_F(OpenReaderTest, FileThatCannotBeOpenedIsNotValidAndTheReaderIsClosed) {
    for (const std::string& path :
         {std::string(), folder.file("none.sf"), folder.path(), folder.path() + "/"}) {
        openReader(reader, folder.file("a.sf"), true);
        expectThrow<Poco::IOException>("File not valid.", [&] { openReader(reader, path, true); });
        EXPECT_FALSE(reader.isOpen()) << path;
    }
}

TEST_F(OpenReaderTest, FormatErrorIsPassedOnAndTheReaderIsClosed) {
    openReader(reader, folder.file("a.sf"), true);
    expectThrow<Poco::DataException>(
        "Format error in file : '" + folder.file("b.sf") + "', check binary mode!",
        [&] { openReader(reader, folder.file("b.sf"), false); });
    EXPECT_FALSE(reader.isOpen());
}

TEST(FilePathTest, HeadersThatCannotBeWrittenAreTold) {
    const Support::TemporaryFolder folder;
    const std::string path = folder.file("a.sf");
    SensorFileConfig config;
    config.addCalibData("a", Eigen::MatrixXd::Constant(200, 200, 1.0 / 3.0));
    SensorFileWriter writer;
    const Support::FileSizeLimit limit(20);
    expectThrow<Poco::IOException>("Problem while openning : " + path, [&] {
        openWriter(writer, path, config, /*binary=*/true, /*writeHeaders=*/true);
    });
    EXPECT_FALSE(writer.isOpen());
}
