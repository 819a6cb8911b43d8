#include "host/runner/SpaceWatch.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint64_t kKiB = 1024;

class SpaceWatchTest : public testing::Test {
 protected:
    static RecordedFile file(std::uint64_t size, std::uint64_t freeBytes) {
        return {1, "/data/a.bin", size, 7, freeBytes};
    }
    /// Looks once a second, while a file grows evenly from its beginning and the disk fills by it.
    std::vector<std::string> grow(std::uint64_t bytesPerSecond, std::uint64_t free, int seconds) {
        std::vector<std::string> all;
        for (int i = 0; i < seconds; ++i, now_ += 1s) {
            const std::uint64_t size = bytesPerSecond * static_cast<std::uint64_t>(i);
            for (const std::string& warning : watch_.look(now_, {file(size, free - size)}))
                all.push_back(warning);
        }
        return all;
    }

    SpaceWatch watch_;
    std::chrono::nanoseconds now_{0};
};

TEST_F(SpaceWatchTest, WarnsOnceBelowAMinute) {
    EXPECT_THAT(grow(kKiB, 100 * kKiB, 41), IsEmpty()) << "60 s are left";
    now_ = 0s;
    watch_ = {};
    EXPECT_THAT(grow(kKiB, 100 * kKiB, 100),
                ElementsAre("warning: the disk of '/data/a.bin' will be full in 59 s: 59 KiB are "
                            "free, 1 KiB are recorded a second"));
}

TEST_F(SpaceWatchTest, SaysNothingBeforeItSawASecond) {
    EXPECT_THAT(watch_.look(0s, {file(0, 10)}), IsEmpty());
    EXPECT_THAT(watch_.look(999ms, {file(1000, 10)}), IsEmpty());
    EXPECT_THAT(watch_.look(1s, {file(1000, 10)}), SizeIs(1));
}

TEST_F(SpaceWatchTest, TakesTheRateOfTheLastTenSeconds) {
    // What was written within the first second counts no more.
    watch_.look(0s, {file(0, 1000 * kKiB)});
    for (auto time = 1s; time <= 11s; time += 1s)
        EXPECT_THAT(watch_.look(time, {file(10 * kKiB, 1000 * kKiB)}), IsEmpty());
    EXPECT_THAT(watch_.look(12s, {file(10 * kKiB, 1)}), IsEmpty()) << "nothing is written now";
}

TEST_F(SpaceWatchTest, AddsUpTheRecordingsOfADiskAndNoOthers) {
    const auto look = [this](std::chrono::nanoseconds time, std::uint64_t size) {
        return watch_.look(time, {{1, "/data/a.bin", size, 7, 100 * kKiB},
                                  {2, "/data/b.bin", size, 7, 100 * kKiB},
                                  {3, "/else/c.bin", size, 8, 100 * kKiB}});
    };
    look(0s, 0);
    EXPECT_THAT(look(1s, kKiB),
                ElementsAre("warning: the disk of '/data/a.bin', '/data/b.bin' will "
                            "be full in 50 s: 100 KiB are free, 2 KiB are recorded "
                            "a second"));
}

TEST_F(SpaceWatchTest, AFileThatIsMadeAnewIsNoLoss) {
    watch_.look(0s, {{1, "/data/a.bin", 1000, 7, 10}});
    EXPECT_THAT(watch_.look(1s, {{1, "/data/a.bin", 0, 7, 10}}), IsEmpty());
    EXPECT_THAT(watch_.look(2s, {{2, "/data/a.bin", 100, 7, 10}}), SizeIs(1));
}

TEST_F(SpaceWatchTest, DoesNotFlicker) {
    EXPECT_THAT(grow(kKiB, 61 * kKiB, 5), SizeIs(1));
    // The rate falls, or a little is deleted: it is the same disk all the same.
    EXPECT_THAT(grow(kKiB / 2, 61 * kKiB, 20), IsEmpty());
    EXPECT_THAT(grow(kKiB, 80 * kKiB, 20), IsEmpty());
    EXPECT_THAT(watch_.look(now_, {}), IsEmpty());
    now_ += 60s;
    EXPECT_THAT(grow(kKiB, 50 * kKiB, 20), IsEmpty());
}

TEST_F(SpaceWatchTest, WarnsAgainAfterSpaceWasMade) {
    EXPECT_THAT(grow(kKiB, 50 * kKiB, 5), SizeIs(1));
    EXPECT_THAT(grow(kKiB, 500 * kKiB, 5), IsEmpty());
    EXPECT_THAT(grow(kKiB, 50 * kKiB, 20), SizeIs(1));
}

TEST_F(SpaceWatchTest, ARestIsNoPartOfTheRate) {
    grow(kKiB, 50 * kKiB, 1);
    watch_.look(now_, {});
    now_ += 9s;
    EXPECT_THAT(watch_.look(now_, {{2, "/data/b.bin", 0, 7, 50 * kKiB}}), IsEmpty());
    now_ += 1s;
    EXPECT_THAT(watch_.look(now_, {{2, "/data/b.bin", kKiB, 7, 50 * kKiB}}), SizeIs(1));
}

TEST_F(SpaceWatchTest, ADiskThatDoesNotCountIsNotJudged) {
    watch_.look(0s, {{1, "/data/a.bin", 0, 7, std::nullopt}});
    EXPECT_THAT(watch_.look(1s, {{1, "/data/a.bin", 1000, 7, std::nullopt}}), IsEmpty());
}

}  // namespace
}  // namespace Quoril::Runner
