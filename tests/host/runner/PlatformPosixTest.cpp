#include "host/runner/Platform.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <filesystem>
#include <fstream>
#include <limits>
#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

constexpr std::uint64_t kMoreThanAnyDisk = std::numeric_limits<std::uint64_t>::max();

class WatchedFileTest : public testing::Test {
 protected:
    void write(const std::string& text) { std::ofstream(path_, std::ios::app) << text; }

    Support::TemporaryFolder folder_;
    std::string path_ = folder_.file("a.bin");
};

TEST_F(WatchedFileTest, TellsSizeAndDisk) {
    write("");
    const WatchedFile file(path_);
    write("12345");
    const auto facts = file.look();
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->size, 5U);
    EXPECT_TRUE(facts->isInPlace);
    EXPECT_FALSE(facts->isRemoved);
    EXPECT_TRUE(facts->freeBytes);
    EXPECT_EQ(facts->fileSystem, WatchedFile(path_).look()->fileSystem);
}

TEST_F(WatchedFileTest, SeesThatItIsMoved) {
    write("1");
    const WatchedFile file(path_);
    std::filesystem::rename(path_, path_ + ".old");
    ASSERT_TRUE(file.look());
    EXPECT_FALSE(file.look()->isInPlace);
    EXPECT_FALSE(file.look()->isRemoved);
    write("another one");
    EXPECT_FALSE(file.look()->isInPlace);
    EXPECT_EQ(file.look()->size, 1U);
}

TEST_F(WatchedFileTest, SeesThatItIsRemoved) {
    write("1");
    const WatchedFile file(path_);
    std::filesystem::remove(path_);
    ASSERT_TRUE(file.look());
    EXPECT_TRUE(file.look()->isRemoved);
}

TEST_F(WatchedFileTest, LeavesWhatIsNoRegularFileAlone) {
    EXPECT_FALSE(WatchedFile(path_).look()) << "nothing there";
    EXPECT_FALSE(WatchedFile(folder_.path()).look());
    EXPECT_FALSE(WatchedFile("").look());
    // Opened for reading, it would take away what a real reader waits for.
    ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
    EXPECT_FALSE(WatchedFile(path_).look());
}

TEST_F(WatchedFileTest, RoomIsThatOfTheFilesDisk) {
    EXPECT_EQ(findFullDisk(path_, 0), "");
    EXPECT_THAT(findFullDisk(path_, kMoreThanAnyDisk),
                testing::MatchesRegex("No space left on device, [0-9]+ bytes are free"));
    EXPECT_FALSE(std::filesystem::exists(path_)) << "it only looks";
    write("1");
    EXPECT_NE(findFullDisk(path_, kMoreThanAnyDisk), "");
    EXPECT_EQ(findFullDisk("/dev/full", kMoreThanAnyDisk), "") << "a device needs no room";
    EXPECT_EQ(findFullDisk(folder_.file("none/a.bin"), kMoreThanAnyDisk), "") << "nobody knows";
}

}  // namespace
}  // namespace Quoril::Runner
