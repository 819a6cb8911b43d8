#include "framework/Synchronizer.hpp"
#include "host/EditGate.hpp"
#include "host/SynchronizerLock.hpp"
#include "tests/host/TestFilters.hpp"

#include <atomic>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using Locker = Synchronizer::DisablerLocker;

/// A thread that passes the edit gate freely, as layouts' do.
template <class Body>
std::thread startLayoutThread(Body body) {
    return std::thread([body] {
        EditGate::setIsLayoutThread(true);
        body();
    });
}

bool waitForQueue(Synchronizer& synchronizer, std::uint64_t length) {
    return waitFor([&] { return synchronizer.getLock()->getQueueLength() == length; });
}

TEST(SynchronizerTest, NullPointersAreLeftOut) {
    const Locker none(nullptr, nullptr);
    Synchronizer synchronizer;
    {
        const Locker second(nullptr, &synchronizer);
        EXPECT_TRUE(synchronizer.isHeldByThisThread());
    }
    EXPECT_FALSE(synchronizer.isHeldByThisThread());
}

TEST(SynchronizerTest, LockIsRecursiveAndCountsOncePerLock) {
    Synchronizer first;
    Synchronizer second;
    second.setLock(first.getLock());
    {
        const Locker both(&first, &second);
        const Locker twice(&first, &first);
        { const Locker nested(&second, nullptr); }
        EXPECT_TRUE(first.isHeldByThisThread());
        EXPECT_TRUE(second.isHeldByThisThread());
    }
    EXPECT_FALSE(first.isHeldByThisThread());
}

TEST(SynchronizerTest, SecondLockCanBeTakenWhileTheFirstIsHeld) {
    Synchronizer first;
    Synchronizer second;
    const Locker outer(&first, nullptr);
    {
        const Locker both(&first, &second);
        EXPECT_TRUE(second.isHeldByThisThread());
    }
    EXPECT_FALSE(second.isHeldByThisThread());
    EXPECT_TRUE(first.isHeldByThisThread());
}

TEST(SynchronizerTest, OtherThreadsAreKeptOut) {
    Synchronizer synchronizer;
    int value = 0;
    const auto count = [&] {
        for (int i = 0; i < 2000; ++i) {
            const Locker lock(&synchronizer, nullptr);
            const Locker nested(&synchronizer, nullptr);
            ++value;
        }
    };
    std::thread editor(count);
    std::thread layout = startLayoutThread(count);
    count();
    editor.join();
    layout.join();
    EXPECT_EQ(value, 6000);
}

TEST(SynchronizerTest, WaitingThreadsGetTheLockInTheOrderOfTheirComing) {
    Synchronizer synchronizer;
    std::vector<int> order;
    std::vector<std::thread> threads;
    {
        const Locker lock(&synchronizer, nullptr);
        for (int i = 0; i < 4; ++i) {
            threads.push_back(startLayoutThread([&, i] {
                const Locker mine(&synchronizer, nullptr);
                order.push_back(i);
            }));
            ASSERT_TRUE(waitForQueue(synchronizer, static_cast<std::uint64_t>(i) + 1));
        }
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(order, ::testing::ElementsAre(0, 1, 2, 3));
}

TEST(SynchronizerTest, PendingEditComesBeforeTheNextRoundOfABusyThread) {
    Synchronizer synchronizer;
    std::atomic<bool> isEdited{false};
    int roundsAfterTheEditCame = 0;
    std::thread editor;
    std::thread layout = startLayoutThread([&] {
        bool hasEditorCome = false;
        while (!isEdited) {
            const Locker round(&synchronizer, nullptr);
            if (isEdited) break;
            if (hasEditorCome) ++roundsAfterTheEditCame;
            if (!hasEditorCome) hasEditorCome = waitForQueue(synchronizer, 1);
        }
    });
    editor = std::thread([&] {
        const Locker edit(&synchronizer, nullptr);
        isEdited = true;
    });
    editor.join();
    layout.join();
    EXPECT_EQ(roundsAfterTheEditCame, 0);
}

TEST(SynchronizerTest, EditsThatNeedEachOthersLocksDoNotDeadlock) {
    Synchronizer first;
    Synchronizer second;
    const auto edit = [](Synchronizer& outer, Synchronizer& inner) {
        for (int i = 0; i < 2000; ++i) {
            const Locker lock(&outer, nullptr);
            const Locker nested(&inner, nullptr);
        }
    };
    std::thread other([&] { edit(second, first); });
    edit(first, second);
    other.join();
}

TEST(SynchronizerTest, WaiterFollowsASynchronizerThatMovesToAnotherLock) {
    Synchronizer moved;
    Synchronizer target;
    const std::shared_ptr<Synchronizer::Lock> oldLock = moved.getLock();
    std::atomic<bool> isInside{false};
    std::thread waiter;
    {
        const Locker outer(&target, nullptr);
        {
            const Locker inner(&moved, nullptr);
            waiter = startLayoutThread([&] {
                const Locker mine(&moved, nullptr);
                isInside = true;
                EXPECT_TRUE(target.isHeldByThisThread());
            });
            ASSERT_TRUE(waitFor([&] { return oldLock->getQueueLength() == 1; }));
            moved.setLock(target.getLock());
        }
        ASSERT_TRUE(waitForQueue(target, 1));
        EXPECT_FALSE(isInside);
    }
    waiter.join();
    EXPECT_TRUE(isInside);
}

TEST(SynchronizerTest, SynchronizerMayBeDestroyedWhileItsLockIsHeld) {
    auto synchronizer = std::make_unique<Synchronizer>();
    const Locker lock(synchronizer.get(), nullptr);
    synchronizer.reset();
}

class SynchronizerWaitTest : public ::testing::Test {
 protected:
    void startWaiter() {
        waiter_ = startLayoutThread([this] {
            const Locker outer(&synchronizer_, nullptr);
            const Locker nested(&synchronizer_, nullptr);
            const Poco::FastMutex::ScopedLock lock(mutex_);
            isReady_ = true;
            synchronizer_.wait(mutex_, event_);
            EXPECT_FALSE(mutex_.tryLock());
            EXPECT_TRUE(synchronizer_.isHeldByThisThread());
            hasReturned_ = true;
        });
    }
    /// Succeeds once the waiter has given up what it holds.
    void enterWhileWaiting() {
        ASSERT_TRUE(waitFor([this] { return isReady_.load(); }));
        const Locker edit(&synchronizer_, nullptr);
        const Poco::FastMutex::ScopedLock lock(mutex_);
        EXPECT_FALSE(hasReturned_);
    }

    Synchronizer synchronizer_;
    Poco::FastMutex mutex_;
    Poco::Event event_;
    std::atomic<bool> isReady_{false};
    std::atomic<bool> hasReturned_{false};
    std::thread waiter_;
};

TEST_F(SynchronizerWaitTest, WaitGivesUpMutexAndLockAndHasThemAgainAfterTheSignal) {
    startWaiter();
    enterWhileWaiting();
    synchronizer_.signal(event_);
    waiter_.join();
    EXPECT_TRUE(hasReturned_);
}

TEST_F(SynchronizerWaitTest, EndedWaitsReturnAndLaterOnesReturnAtOnce) {
    startWaiter();
    enterWhileWaiting();
    synchronizer_.getLock()->endWaits();
    waiter_.join();
    const Poco::FastMutex::ScopedLock lock(mutex_);
    synchronizer_.wait(mutex_, event_);
}

TEST_F(SynchronizerWaitTest, SignalFromBeforeTheWaitDoesNotCount) {
    event_.set();
    startWaiter();
    enterWhileWaiting();
    synchronizer_.signal(event_);
    waiter_.join();
    EXPECT_TRUE(hasReturned_);
}

TEST_F(SynchronizerWaitTest, WaitsAreAllowedAgain) {
    synchronizer_.getLock()->endWaits();
    synchronizer_.getLock()->allowWaits();
    startWaiter();
    enterWhileWaiting();
    synchronizer_.signal(event_);
    waiter_.join();
}

TEST_F(SynchronizerWaitTest, WaitingEditLetsOtherEditsThrough) {
    std::thread editor([this] {
        const Locker lock(&synchronizer_, nullptr);
        const Poco::FastMutex::ScopedLock guard(mutex_);
        isReady_ = true;
        synchronizer_.wait(mutex_, event_);
    });
    enterWhileWaiting();
    synchronizer_.signal(event_);
    editor.join();
}

TEST(EditGateTest, GateIsRecursiveAndKnowsWhoIsInside) {
    EXPECT_FALSE(EditGate::isEntered());
    {
        const EditGate outer;
        const EditGate inner;
        EXPECT_TRUE(EditGate::isEntered());
        std::thread([] { EXPECT_FALSE(EditGate::isEntered()); }).join();
    }
    EXPECT_FALSE(EditGate::isEntered());
}

}  // namespace
}  // namespace Quoril::Core
