#include "framework/BufferStrategyFactory.hpp"
#include "host/SynchronizerLock.hpp"
#include "tests/framework/SampleSupport.hpp"

#include <atomic>
#include <latch>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::numberOf;
using FrameworkTest::Sample;
using FrameworkTest::sample;

using Fifo = FifoBuffer<Sample>;
using Lifo = LifoBuffer<Sample>;
using Single = SingleValueBuffer<Sample>;

/// A reader on a thread of its own that pops once while it holds the synchronizer, as filters do.
template <class Buffer>
class WaitingReader {
 public:
    explicit WaitingReader(unsigned capacity) : strategy(capacity, synchronizer) {
        isHolding_.wait();
    }
    ~WaitingReader() {
        if (thread_.joinable()) thread_.join();
    }
    WaitingReader(const WaitingReader&) = delete;
    WaitingReader& operator=(const WaitingReader&) = delete;

    /// The number popped; nothing when pop answered false.
    std::optional<double> join() {
        thread_.join();
        return result_;
    }

    Synchronizer synchronizer;
    SynchronizedBufferStrategy<Sample, Buffer> strategy;

 private:
    void read() {
        const Synchronizer::DisablerLocker lock(&synchronizer, nullptr);
        isHolding_.count_down();
        const Sample* popped = nullptr;
        if (strategy.pop(popped)) result_ = numberOf(*popped);
    }

    std::optional<double> result_;
    std::latch isHolding_{1};
    std::thread thread_{[this] { read(); }};
};

template <class Buffer>
class WaitingPop : public testing::Test {
 public:
    static constexpr unsigned kCapacity = std::is_same_v<Buffer, Single> ? 1 : 4;
};
using Buffers = testing::Types<Fifo, Lifo, Single>;
TYPED_TEST_SUITE(WaitingPop, Buffers);

// The reader gives its synchronizer up only while it waits: who gets the lock after the reader has
// said that it holds it knows that the reader waits in pop.

TYPED_TEST(WaitingPop, EndsWithTheNextPush) {
    WaitingReader<TypeParam> reader(TestFixture::kCapacity);
    const Sample pushed = sample(5);
    { const Synchronizer::DisablerLocker readerWaits(&reader.synchronizer, nullptr); }
    reader.strategy.push(pushed);
    EXPECT_EQ(reader.join(), 5.0);
}

TYPED_TEST(WaitingPop, IsFalseWhenAnotherReaderWasFaster) {
    WaitingReader<TypeParam> reader(TestFixture::kCapacity);
    {
        const Synchronizer::DisablerLocker readerWaits(&reader.synchronizer, nullptr);
        const Sample pushed = sample(5);
        reader.strategy.push(pushed);
        const Sample* popped = nullptr;
        ASSERT_TRUE(reader.strategy.pop(popped));
        EXPECT_EQ(numberOf(*popped), 5.0);
    }
    EXPECT_EQ(reader.join(), std::nullopt);
}

TYPED_TEST(WaitingPop, IsFalseWhenTheHostEndsTheWait) {
    WaitingReader<TypeParam> reader(TestFixture::kCapacity);
    { const Synchronizer::DisablerLocker readerWaits(&reader.synchronizer, nullptr); }
    reader.synchronizer.getLock()->endWaits();
    EXPECT_EQ(reader.join(), std::nullopt);
}

TYPED_TEST(WaitingPop, DoesNotWaitWhileThereAreSamples) {
    Synchronizer synchronizer;
    SynchronizedBufferStrategy<Sample, TypeParam> strategy(TestFixture::kCapacity, synchronizer);
    strategy.push(sample(1));
    const Sample* popped = nullptr;
    ASSERT_TRUE(strategy.pop(popped));
    EXPECT_EQ(numberOf(*popped), 1.0);
}

TYPED_TEST(WaitingPop, IsNotEndedByThePushOfASampleThatWasRead) {
    WaitingReader<TypeParam> reader(TestFixture::kCapacity);
    {
        const Synchronizer::DisablerLocker readerWaits(&reader.synchronizer, nullptr);
        EXPECT_EQ(reader.strategy.size(), 0U);
    }
    reader.strategy.push(sample(1));
    ASSERT_EQ(reader.join(), 1.0);
    // Two pushes, two pops: the signals are left over, and the next pop must wait all the same.
    const Sample* popped = nullptr;
    reader.strategy.push(sample(2));
    ASSERT_TRUE(reader.strategy.pop(popped));
    std::latch isHolding(1);
    std::optional<double> second;
    std::thread again([&] {
        const Synchronizer::DisablerLocker lock(&reader.synchronizer, nullptr);
        isHolding.count_down();
        const Sample* awaited = nullptr;
        if (reader.strategy.pop(awaited)) second = numberOf(*awaited);
    });
    isHolding.wait();
    { const Synchronizer::DisablerLocker readerWaits(&reader.synchronizer, nullptr); }
    reader.strategy.push(sample(3));
    again.join();
    EXPECT_EQ(second, 3.0);
}

TEST(ThreadSafePop, ReturnsAtOnceWhenThereIsNothing) {
    ThreadSafeBufferStrategy<Sample, Fifo> strategy(3);
    const Sample* popped = nullptr;
    EXPECT_FALSE(strategy.pop(popped));
    EXPECT_EQ(popped, nullptr);
}

/// One thread pushes 1, 2, 3 ... while this one reads until it has seen the last.
template <class Strategy>
void pushAndReadOnTwoThreads(Strategy& strategy, bool isInOrder) {
    constexpr int kCount = 20000;
    std::atomic<int> lost{0};
    std::thread writer([&] {
        Sample current;
        for (int i = 1; i <= kCount; ++i) {
            current = sample(i, 1 + i % 3, 1);
            if (!strategy.push(current)) ++lost;
        }
    });
    int taken = 0;
    double last = 0;
    bool isLastSeen = false;
    while (!isLastSeen || !strategy.isEmpty()) {
        const Sample* popped = nullptr;
        if (!strategy.pop(popped)) {
            std::this_thread::yield();
            continue;
        }
        const double number = numberOf(*popped);
        ASSERT_GT(number, 0.0) << "values and time stamp of different samples";
        if (isInOrder) {
            ASSERT_GT(number, last);
        }
        last = number;
        isLastSeen = isLastSeen || number == kCount;
        ++taken;
        EXPECT_LE(strategy.size(), strategy.capacity());
    }
    writer.join();
    EXPECT_EQ(taken + lost, kCount) << "each sample was either read once or counted as lost";
}

TEST(TwoThreads, ThreadSafeFifoKeepsOrderAndCounts) {
    ThreadSafeBufferStrategy<Sample, Fifo> strategy(16);
    pushAndReadOnTwoThreads(strategy, /*isInOrder=*/true);
}

TEST(TwoThreads, ThreadSafeLifoKeepsCounts) {
    ThreadSafeBufferStrategy<Sample, Lifo> strategy(16);
    pushAndReadOnTwoThreads(strategy, /*isInOrder=*/false);
}

TEST(TwoThreads, ThreadSafeSingleValueKeepsOrderAndCounts) {
    ThreadSafeBufferStrategy<Sample, Single> strategy(1);
    pushAndReadOnTwoThreads(strategy, /*isInOrder=*/true);
}

TEST(TwoThreads, SynchronizedFifoKeepsOrderAndCounts) {
    Synchronizer synchronizer;
    SynchronizedBufferStrategy<Sample, Fifo> strategy(16, synchronizer);
    pushAndReadOnTwoThreads(strategy, /*isInOrder=*/true);
}

TEST(TwoThreads, SynchronizedLifoKeepsCounts) {
    Synchronizer synchronizer;
    SynchronizedBufferStrategy<Sample, Lifo> strategy(16, synchronizer);
    pushAndReadOnTwoThreads(strategy, /*isInOrder=*/false);
}

TEST(TwoThreads, SynchronizedSingleValueKeepsOrderAndCounts) {
    Synchronizer synchronizer;
    SynchronizedBufferStrategy<Sample, Single> strategy(1, synchronizer);
    pushAndReadOnTwoThreads(strategy, /*isInOrder=*/true);
}

}  // namespace
}  // namespace Quoril::Core
