#include "host/Activity.hpp"
#include "host/WakeSignal.hpp"

#include <atomic>
#include <thread>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using Meanwhile = WakeSignal::Meanwhile;

constexpr WakeSignal::Instant kPast = WakeSignal::Instant::min();

TEST(WakeSignalTest, SignalBeforeTheWaitEndsIt) {
    WakeSignal signal;
    signal.set();
    signal.wait(std::nullopt, Meanwhile::kResting);
}

TEST(WakeSignalTest, SignalCountsOnce) {
    WakeSignal signal;
    signal.set();
    signal.set();
    signal.wait(std::nullopt, Meanwhile::kResting);
    std::thread waker([&] { signal.set(); });
    signal.wait(std::nullopt, Meanwhile::kResting);
    waker.join();
}

TEST(WakeSignalTest, DeadlineEndsTheWait) {
    WakeSignal signal;
    signal.wait(kPast, Meanwhile::kResting);
}

TEST(WakeSignalTest, EditsAreCountedApart) {
    WakeSignal signal;
    signal.set();
    EXPECT_EQ(signal.getEditCount(), 0U);
    signal.setByEdit();
    EXPECT_EQ(signal.getEditCount(), 1U);
}

TEST(WakeSignalTest, RoomIsToldOnlyToThoseWhoAsked) {
    WakeSignal signal;
    signal.tellRoom();
    signal.askForRoom();
    signal.tellRoom();
    signal.wait(std::nullopt, Meanwhile::kResting);
    signal.tellRoom();
    signal.wait(kPast, Meanwhile::kResting);
}

TEST(WakeSignalTest, RestEndsWithTheSignalBeforeTheThreadIsAwake) {
    const auto activity = std::make_shared<Activity>();
    WakeSignal signal(activity);
    signal.begin();
    EXPECT_FALSE(activity->isAtRest());
    std::atomic<bool> mayEnd{false};
    std::thread waiter([&] {
        signal.wait(std::nullopt, Meanwhile::kResting);
        while (!mayEnd)
            std::this_thread::yield();
        signal.end();
    });
    EXPECT_TRUE(activity->waitForRest(std::chrono::seconds(30)));
    signal.set();
    EXPECT_FALSE(activity->isAtRest());
    mayEnd = true;
    waiter.join();
    EXPECT_TRUE(activity->isAtRest());
}

TEST(WakeSignalTest, BusyWaitIsNoRest) {
    const auto activity = std::make_shared<Activity>();
    WakeSignal signal(activity);
    signal.begin();
    std::thread waiter([&] { signal.wait(std::nullopt, Meanwhile::kBusy); });
    EXPECT_FALSE(activity->waitForRest(std::chrono::milliseconds(5)));
    signal.set();
    waiter.join();
    signal.end();
}

TEST(WakeSignalTest, TimedOutRestIsBusyAgain) {
    const auto activity = std::make_shared<Activity>();
    WakeSignal signal(activity);
    signal.begin();
    signal.wait(kPast, Meanwhile::kResting);
    EXPECT_FALSE(activity->isAtRest());
    signal.end();
}

}  // namespace
}  // namespace Quoril::Core
