#include "filters/common/Sleep.hpp"
#include "tests/support/TestTime.hpp"

#include <atomic>
#include <thread>

#include <Poco/RunnableAdapter.h>
#include <Poco/Thread.h>
#include <gmock/gmock.h>

namespace {

struct LongSleeper {
    std::atomic<bool> isAwake{false};
    void run() {
        // Far longer than the test may take: only a wake-up ends it.
        Filters::sleepMilliseconds(2147483647);
        isAwake = true;
    }
};

}  // namespace

TEST(SleepTest, ReplacedSleepIsAskedForPositiveTimesOnly) {
    Support::RecordedSleeps sleeps;
    Filters::sleepMilliseconds(12);
    Filters::sleepMilliseconds(0);
    Filters::sleepMilliseconds(-3);
    Filters::sleepMilliseconds(7);
    EXPECT_THAT(sleeps.take(), testing::ElementsAre(12, 7));
}

TEST(SleepTest, WakingThePocoThreadEndsItsSleep) {
    LongSleeper sleeper;
    Poco::RunnableAdapter<LongSleeper> adapter(sleeper, &LongSleeper::run);
    Poco::Thread thread;
    thread.start(adapter);
    while (!thread.tryJoin(1))
        thread.wakeUp();
    EXPECT_TRUE(sleeper.isAwake);
}

TEST(SleepTest, OtherThreadsSleepToo) {
    std::thread thread([] { Filters::sleepMilliseconds(1); });
    thread.join();
}
