#include "tests/sensorfile/TestSupport.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tools/common/OutputFile.hpp"
#include "tools/common/Platform.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <Poco/Exception.h>
#include <gtest/gtest.h>

namespace SensorFileTool {
namespace {

namespace fs = std::filesystem;

class OutputFileTest : public testing::Test {
 protected:
    static void write(const std::string& path, const std::string& content) {
        std::ofstream(path, std::ios::binary) << content;
    }
    static std::string read(const std::string& path) {
        std::ostringstream content;
        content << std::ifstream(path, std::ios::binary).rdbuf();
        return content.str();
    }
    [[nodiscard]] std::size_t fileCount() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()));
    }

    Support::TemporaryFolder folder;
    std::istringstream input;
    std::ostringstream output;
    std::ostringstream errors;
    Console console{input, output, errors};
    std::string path = folder.file("out.bin");
};

TEST_F(OutputFileTest, AFileAppearsWhenItIsWhole) {
    OutputFile file(console, path, false);
    write(file.getPath(), "content");
    EXPECT_FALSE(fs::exists(path));
    file.commit();
    EXPECT_EQ(read(path), "content");
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(OutputFileTest, NothingIsLeftWithoutTheLastStep) {
    {
        const OutputFile file(console, path, false);
        write(file.getPath(), "content");
        EXPECT_EQ(fileCount(), 1U);
    }
    EXPECT_EQ(fileCount(), 0U);
}

TEST_F(OutputFileTest, AFileThatIsThereIsKept) {
    write(path, "old");
    EXPECT_THROW_MESSAGE(OutputFile(console, path, false), Poco::ExistsException,
                         path + " is there already; --force overwrites it");
    EXPECT_EQ(read(path), "old");
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(OutputFileTest, AFileThatCameMeanwhileIsKept) {
    OutputFile file(console, path, false);
    write(path, "old");
    EXPECT_THROW(file.commit(), Poco::ExistsException);
    EXPECT_EQ(read(path), "old");
}

TEST_F(OutputFileTest, AnOverwrittenFileStaysUntilTheOtherIsWhole) {
    write(path, "old");
    OutputFile file(console, path, true);
    write(file.getPath(), "new");
    EXPECT_EQ(read(path), "old");
    file.commit();
    EXPECT_EQ(read(path), "new");
}

TEST_F(OutputFileTest, AnOverwrittenFileKeepsItsPermissions) {
    write(path, "old");
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    OutputFile file(console, path, true);
    file.commit();
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(OutputFileTest, ASymbolicLinkStaysOne) {
    const std::string link = folder.file("link");
    write(path, "old");
    fs::create_symlink(path, link);
    OutputFile file(console, link, true);
    write(file.getPath(), "new");
    file.commit();
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(read(path), "new");
}

TEST_F(OutputFileTest, TheTemporaryFileIsInTheFolderOfTheLinksTarget) {
    const std::string link = folder.file("link");
    fs::create_directory(folder.file("sub"));
    fs::create_symlink("sub/out.bin", link);
    write(folder.file("sub/out.bin"), "old");
    const OutputFile file(console, link, true);
    EXPECT_EQ(fs::path(file.getPath()).parent_path(), folder.file("sub"));
}

TEST_F(OutputFileTest, ALinkToNothingIsThereAlready) {
    const std::string link = folder.file("link");
    fs::create_symlink("out.bin", link);
    EXPECT_THROW_MESSAGE(OutputFile(console, link, false), Poco::ExistsException,
                         link + " is there already; --force overwrites it");
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(OutputFileTest, ThroughALinkToNothingItsTargetIsMade) {
    const std::string link = folder.file("link");
    fs::create_symlink("out.bin", link);
    fs::create_symlink(link, folder.file("second"));
    OutputFile file(console, folder.file("second"), true);
    write(file.getPath(), "new");
    file.commit();
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(read(path), "new");
    EXPECT_EQ(fileCount(), 3U);
}

TEST_F(OutputFileTest, ALinkThatCameMeanwhileIsKept) {
    OutputFile file(console, path, false);
    fs::create_symlink("elsewhere", path);
    EXPECT_THROW(file.commit(), Poco::ExistsException);
    EXPECT_TRUE(fs::is_symlink(path));
}

TEST_F(OutputFileTest, NamesThatTheSystemDoesNotTakeAreRefusedWithItsCause) {
    fs::create_symlink("circle", folder.file("circle"));
    EXPECT_THROW_MESSAGE(OutputFile(console, folder.file("circle"), true),
                         Poco::CreateFileException,
                         folder.file("circle") + ": Too many levels of symbolic links");
    const std::string large = folder.file(std::string(256, 'x'));
    EXPECT_THROW_MESSAGE(OutputFile(console, large, true), Poco::CreateFileException,
                         large + ": File name too long");
}

TEST_F(OutputFileTest, TheLongestNamesAreTaken) {
    std::string name = "x";
    while (name.size() < 255)
        name += "\u00e4";
    OutputFile file(console, folder.file(name), false);
    write(file.getPath(), "content");
    file.commit();
    EXPECT_EQ(read(folder.file(name)), "content");
}

TEST_F(OutputFileTest, AFileIsNeverMadeThroughALinkThatSomebodyPutInItsPlace) {
    fs::create_symlink("out.bin", folder.file("planted"));
    EXPECT_EQ(Platform::createFile(folder.file("planted"), false), std::errc::file_exists);
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(OutputFileTest, OnATerminalTheStandardOutputIsNotSteered) {
    console.isTerminal = true;
    OutputFile file(console, "-", false);
    write(file.getPath(), "a\tb\x1b[31m\nc");
    file.commit();
    EXPECT_EQ(output.str(), "a\tb\\x1b[31m\nc");
}

TEST_F(OutputFileTest, ADashIsTheStandardOutput) {
    OutputFile file(console, "-", false);
    EXPECT_EQ(file.getName(), "standard output");
    write(file.getPath(), std::string("con\0tent", 8));
    EXPECT_EQ(output.str(), "");
    file.commit();
    EXPECT_EQ(output.str(), std::string("con\0tent", 8));
}

TEST_F(OutputFileTest, NoBytesAreNoFailureOfTheStandardOutput) {
    OutputFile file(console, "-", false);
    file.commit();
    EXPECT_EQ(output.str(), "");
}

TEST_F(OutputFileTest, ADeviceIsWrittenToAndStays) {
    OutputFile file(console, "/dev/null", false);
    write(file.getPath(), "content");
    file.commit();
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(OutputFileTest, FoldersAndPlacesWhereNoFileCanBeAreRefused) {
    EXPECT_THROW_MESSAGE(OutputFile(console, folder.path(), true), Poco::WriteFileException,
                         folder.path() + " is a folder");
    const std::string deep = folder.file("none") + "/out.bin";
    EXPECT_THROW_MESSAGE(OutputFile(console, deep, true), Poco::PathNotFoundException,
                         deep + ": the folder '" + folder.file("none") + "' is not there");
    EXPECT_THROW(OutputFile(console, "", true), Poco::FileNotFoundException);
}

TEST_F(OutputFileTest, MessagesNameTheFileAsTheUserDid) {
    const OutputFile file(console, path, false);
    EXPECT_EQ(file.withName("in " + file.getPath() + ": bad"), "in " + path + ": bad");
    EXPECT_EQ(file.withName("bad"), "bad");
}

TEST_F(OutputFileTest, WhatIsFilledAppearsWhenItIsWhole) {
    OutputFile file(console, path, false);
    file.fill([&](const std::string& temporary) {
        write(temporary, "content");
        EXPECT_FALSE(fs::exists(path));
    });
    EXPECT_EQ(read(path), "content");
}

TEST_F(OutputFileTest, ErrorsOfFillingNameTheFileAsTheUserDid) {
    {
        OutputFile file(console, path, false);
        EXPECT_THROW_MESSAGE(file.fill([](const std::string& temporary) {
            throw Poco::FileAccessDeniedException("full: " + temporary);
        }),
                             Poco::WriteFileException, "full: " + path);
        EXPECT_THROW_MESSAGE(
            file.fill([](const std::string&) { throw Poco::ReadFileException("other"); }),
            Poco::ReadFileException, "other");
        EXPECT_THROW(file.fill([](const std::string&) { throw Poco::DataException("other"); }),
                     Poco::DataException);
    }
    EXPECT_EQ(fileCount(), 0U);
}

}  // namespace
}  // namespace SensorFileTool
