#include "filters/common/FilterGuard.hpp"
#include "tests/support/ExpectThrow.hpp"

#include <atomic>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

using Filters::FilterGuard;
using Filters::FilterMutex;

TEST(FilterGuardTest, CallIsNotBusyAtRest) {
    FilterGuard guard;
    EXPECT_FALSE(FilterGuard::Call(guard).isBusy());
}

TEST(FilterGuardTest, CallIsBusyUntilTheLastOfNestedReconfigurationsEnds) {
    FilterGuard guard;
    {
        const FilterGuard::Busy outer(guard);
        {
            const FilterGuard::Busy inner(guard);
            EXPECT_TRUE(FilterGuard::Call(guard).isBusy());
        }
        EXPECT_TRUE(FilterGuard::Call(guard).isBusy());
    }
    EXPECT_FALSE(FilterGuard::Call(guard).isBusy());
}

TEST(FilterGuardTest, BusyEndsWithAnException) {
    FilterGuard guard;
    const auto fail = [&] {
        const FilterGuard::Busy busy(guard);
        throw std::runtime_error("");
    };
    EXPECT_THROW(fail(), std::runtime_error);
    EXPECT_FALSE(FilterGuard::Call(guard).isBusy());
}

TEST(FilterGuardTest, LockingTwiceOnOneThreadIsRefusedInsteadOfHanging) {
    FilterGuard guard;
    const FilterGuard::Call call(guard);
    Support::expectThrow<Poco::IllegalStateException>(
        "The filter's mutex is held by this thread already",
        [&] { const FilterGuard::Busy busy(guard); });
}

TEST(FilterGuardTest, MutexCanBeLockedAgainAfterItsRelease) {
    FilterMutex mutex;
    mutex.lock();
    mutex.unlock();
    mutex.lock();
    mutex.unlock();
}

TEST(FilterGuardTest, ReconfigurationWaitsForTheCallThatRuns) {
    FilterGuard guard;
    std::atomic<bool> isComing{false};
    std::atomic<bool> hasBegun{false};
    std::thread edit;
    {
        const FilterGuard::Call call(guard);
        edit = std::thread([&] {
            isComing = true;
            const FilterGuard::Busy busy(guard);
            hasBegun = true;
        });
        while (!isComing)
            std::this_thread::yield();
        for (int i = 0; i < 100; ++i) {
            EXPECT_FALSE(hasBegun);
            std::this_thread::yield();
        }
    }
    edit.join();
    EXPECT_TRUE(hasBegun);
}
