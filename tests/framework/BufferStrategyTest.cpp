#include "framework/BufferStrategyFactory.hpp"
#include "host/SynchronizerLock.hpp"
#include "tests/framework/SampleSupport.hpp"
#include "tests/support/ExpectThrow.hpp"

#include <deque>
#include <ostream>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::numberOf;
using FrameworkTest::Sample;
using FrameworkTest::sample;
using testing::ElementsAre;
using testing::IsEmpty;

using Strategy = AbstractBufferStrategy<Sample>;

// --- All nine strategies --------------------------------------------------------------------

struct Kind {
    BufferFamily family;
    BufferSettings settings;
};

void PrintTo(const Kind& kind, std::ostream* out) {
    constexpr const char* kFamilies[] = {"Simple", "Synchronized", "ThreadSafe"};
    *out << kFamilies[static_cast<int>(kind.family)];
    *out << (kind.settings.size == 1 ? "Single" : kind.settings.isLifo ? "Lifo" : "Fifo");
}

std::vector<Kind> allKinds() {
    std::vector<Kind> kinds;
    for (const auto family :
         {BufferFamily::kSimple, BufferFamily::kSynchronized, BufferFamily::kThreadSafe})
        for (const BufferSettings settings :
             {BufferSettings{1, false}, BufferSettings{3, false}, BufferSettings{3, true}})
            kinds.push_back({family, settings});
    return kinds;
}

class EachBufferStrategy : public testing::TestWithParam<Kind> {
 public:
    // A reader that finds nothing must come back: the flow is over, so to say.
    EachBufferStrategy() { synchronizer.getLock()->endWaits(); }

    /// Pushed samples stay alive: one of the strategies keeps pointers only.
    bool push(double number) { return strategy->push(pushed.emplace_back(sample(number))); }
    std::vector<double> popAll() {
        std::vector<double> numbers;
        for (const Sample* popped = nullptr; strategy->pop(popped);)
            numbers.push_back(numberOf(*popped));
        return numbers;
    }
    [[nodiscard]] unsigned expectedCapacity() const { return GetParam().settings.size; }
    [[nodiscard]] bool keepsPointers() const {
        return GetParam().family == BufferFamily::kSimple && expectedCapacity() == 1;
    }

    Synchronizer synchronizer;
    std::deque<Sample> pushed;
    std::unique_ptr<Strategy> strategy =
        makeBufferStrategy<Sample>(GetParam().family, GetParam().settings, &synchronizer);
};

INSTANTIATE_TEST_SUITE_P(Kinds, EachBufferStrategy, testing::ValuesIn(allKinds()),
                         testing::PrintToStringParamName());

TEST_P(EachBufferStrategy, StartsEmpty) {
    EXPECT_TRUE(strategy->isEmpty());
    EXPECT_EQ(strategy->size(), 0U);
    EXPECT_EQ(strategy->capacity(), expectedCapacity());
}

TEST_P(EachBufferStrategy, PopOfNothingIsFalseAndLeavesThePointer) {
    const Sample mark = sample(0);
    const Sample* popped = &mark;
    EXPECT_FALSE(strategy->pop(popped));
    EXPECT_EQ(popped, &mark);
}

TEST_P(EachBufferStrategy, OneSampleGoesThroughOnce) {
    EXPECT_TRUE(push(1));
    EXPECT_FALSE(strategy->isEmpty());
    EXPECT_EQ(strategy->size(), 1U);
    EXPECT_THAT(popAll(), ElementsAre(1));
    EXPECT_TRUE(strategy->isEmpty());
    EXPECT_EQ(strategy->size(), 0U);
}

TEST_P(EachBufferStrategy, PushTellsWhetherAnUnreadSampleWasLost) {
    for (unsigned i = 0; i < expectedCapacity(); ++i)
        EXPECT_TRUE(push(i)) << i;
    EXPECT_FALSE(push(10));
    EXPECT_FALSE(push(11));
    EXPECT_EQ(strategy->size(), expectedCapacity());
    popAll();
    EXPECT_TRUE(push(12));
}

TEST_P(EachBufferStrategy, FullBufferLosesItsOldestSamples) {
    for (const double number : {1, 2, 3, 4})
        push(number);
    if (expectedCapacity() == 1) {
        EXPECT_THAT(popAll(), ElementsAre(4));
    } else if (GetParam().settings.isLifo) {
        EXPECT_THAT(popAll(), ElementsAre(4, 3, 2));
    } else {
        EXPECT_THAT(popAll(), ElementsAre(2, 3, 4));
    }
}

TEST_P(EachBufferStrategy, ClearForgetsEverythingAndKeepsTheCapacity) {
    push(1);
    push(2);
    strategy->clear();
    EXPECT_TRUE(strategy->isEmpty());
    EXPECT_EQ(strategy->size(), 0U);
    EXPECT_EQ(strategy->capacity(), expectedCapacity());
    EXPECT_THAT(popAll(), IsEmpty());
    EXPECT_TRUE(push(3));
    EXPECT_THAT(popAll(), ElementsAre(3));
}

TEST_P(EachBufferStrategy, PoppedSampleStaysWholeUntilTheNextPop) {
    push(1);
    const Sample* popped = nullptr;
    ASSERT_TRUE(strategy->pop(popped));
    for (const double number : {2, 3, 4, 5, 6})
        push(number);
    strategy->clear();
    push(7);
    EXPECT_EQ(numberOf(*popped), 1.0);
}

TEST_P(EachBufferStrategy, CopiesWhatIsPushedUnlessItKeepsPointers) {
    Sample written = sample(1);
    strategy->push(written);
    written = sample(2);
    const Sample* popped = nullptr;
    ASSERT_TRUE(strategy->pop(popped));
    EXPECT_EQ(numberOf(*popped), keepsPointers() ? 2.0 : 1.0);
    EXPECT_EQ(popped == &written, keepsPointers());
}

TEST_P(EachBufferStrategy, TakesMatricesOfAnyShape) {
    const std::vector<std::pair<Eigen::Index, Eigen::Index>> shapes = {
        {3, 1}, {1, 3}, {0, 0}, {4, 4}, {0, 5}, {1, 1}, {5, 7}, {3, 1}};
    for (const auto& [rows, columns] : shapes) {
        Sample& one = pushed.emplace_back(sample(0, rows, columns));
        one.value.setRandom();
        strategy->push(one);
        const Sample* popped = nullptr;
        ASSERT_TRUE(strategy->pop(popped));
        EXPECT_EQ(popped->value.rows(), rows);
        EXPECT_EQ(popped->value.cols(), columns);
        EXPECT_TRUE(popped->value == one.value);
    }
}

// --- Which strategy is made -----------------------------------------------------------------

template <class Expected>
bool makes(BufferFamily family, unsigned size, bool isLifo) {
    Synchronizer synchronizer;
    const auto made = makeBufferStrategy<Sample>(family, {size, isLifo}, &synchronizer);
    return dynamic_cast<Expected*>(made.get()) != nullptr;
}

TEST(MakeBufferStrategy, KnowsNineStrategies) {
    using Fifo = FifoBuffer<Sample>;
    using Lifo = LifoBuffer<Sample>;
    using Single = SingleValueBuffer<Sample>;
    using Pointer = SingleValuePtrBuffer<Sample>;
    for (const bool isLifo : {false, true}) {
        EXPECT_TRUE(
            (makes<SimpleBufferStrategy<Sample, Pointer>>(BufferFamily::kSimple, 1, isLifo)));
        EXPECT_TRUE((makes<SynchronizedBufferStrategy<Sample, Single>>(BufferFamily::kSynchronized,
                                                                       1, isLifo)));
        EXPECT_TRUE((
            makes<ThreadSafeBufferStrategy<Sample, Single>>(BufferFamily::kThreadSafe, 1, isLifo)));
    }
    EXPECT_TRUE((makes<SimpleBufferStrategy<Sample, Fifo>>(BufferFamily::kSimple, 2, false)));
    EXPECT_TRUE((makes<SimpleBufferStrategy<Sample, Lifo>>(BufferFamily::kSimple, 2, true)));
    EXPECT_TRUE(
        (makes<SynchronizedBufferStrategy<Sample, Fifo>>(BufferFamily::kSynchronized, 2, false)));
    EXPECT_TRUE(
        (makes<SynchronizedBufferStrategy<Sample, Lifo>>(BufferFamily::kSynchronized, 2, true)));
    EXPECT_TRUE(
        (makes<ThreadSafeBufferStrategy<Sample, Fifo>>(BufferFamily::kThreadSafe, 2, false)));
    EXPECT_TRUE(
        (makes<ThreadSafeBufferStrategy<Sample, Lifo>>(BufferFamily::kThreadSafe, 2, true)));
}

TEST(MakeBufferStrategy, RefusesSizeZero) {
    Support::expectThrow<Poco::InvalidArgumentException>("A buffer cannot have size 0", [] {
        makeBufferStrategy<Sample>(BufferFamily::kSimple, {0, false}, nullptr);
    });
}

// --- Rings against a plain model ------------------------------------------------------------

enum class Operation { kPush, kPop, kClear };

/// What a ring should do, done the plain way.
class RingModel {
 public:
    RingModel(unsigned capacity, bool isLifo) : capacity_(capacity), isLifo_(isLifo) {}

    bool push(const Sample& pushed) {
        const bool isFull = samples_.size() == capacity_;
        if (isFull) samples_.pop_front();
        samples_.push_back(pushed);
        return !isFull;
    }
    Sample pop() {
        const Sample popped = isLifo_ ? samples_.back() : samples_.front();
        if (isLifo_)
            samples_.pop_back();
        else
            samples_.pop_front();
        return popped;
    }
    void clear() { samples_.clear(); }
    [[nodiscard]] unsigned size() const { return static_cast<unsigned>(samples_.size()); }

 private:
    const unsigned capacity_;
    const bool isLifo_;
    std::deque<Sample> samples_;
};

template <class Ring>
void behavesLikeTheModel(bool isLifo) {
    const auto capacity = *rc::gen::inRange(2U, 9U);
    const auto operations =
        *rc::gen::container<std::vector<Operation>>(rc::gen::weightedElement<Operation>(
            {{12, Operation::kPush}, {10, Operation::kPop}, {1, Operation::kClear}}));
    Ring ring(capacity);
    RingModel model(capacity, isLifo);
    double number = 0;
    for (const Operation operation : operations) {
        if (operation == Operation::kPush) {
            const Sample next = sample(++number, *rc::gen::inRange(0, 4), *rc::gen::inRange(0, 4));
            RC_ASSERT(ring.push(next) == model.push(next));
        } else if (operation == Operation::kClear) {
            ring.clear();
            model.clear();
        } else {
            const Sample* popped = nullptr;
            RC_ASSERT(ring.pop(popped) == (model.size() > 0));
            if (popped == nullptr) continue;
            const Sample expected = model.pop();
            RC_ASSERT(popped->timeStamp == expected.timeStamp);
            RC_ASSERT(popped->value.rows() == expected.value.rows());
            RC_ASSERT(popped->value.cols() == expected.value.cols());
            RC_ASSERT(popped->value == expected.value);
        }
        RC_ASSERT(ring.size() == model.size());
        RC_ASSERT(ring.isEmpty() == (model.size() == 0));
        RC_ASSERT(ring.capacity() == capacity);
    }
}

RC_GTEST_PROP(FifoBufferProperty, BehavesLikeAQueueThatDropsItsOldest, ()) {
    behavesLikeTheModel<FifoBuffer<Sample>>(/*isLifo=*/false);
}

RC_GTEST_PROP(LifoBufferProperty, BehavesLikeAStackThatDropsItsOldest, ()) {
    behavesLikeTheModel<LifoBuffer<Sample>>(/*isLifo=*/true);
}

// --- Other types of values ------------------------------------------------------------------

TEST(BufferStrategy, HoldsValuesOfOtherTypesToo) {
    using Text = TimeStampedData<std::string>;
    FifoBuffer<Text> fifo(2);
    for (const char* text : {"a", "b", "c"})
        fifo.push({text, 0.5});
    const Text* popped = nullptr;
    ASSERT_TRUE(fifo.pop(popped));
    EXPECT_EQ(popped->value, "b");
    EXPECT_EQ(popped->timeStamp, 0.5);
}

TEST(CopySample, KeepsTheTargetsStorageWhenSizesAgree) {
    for (Eigen::Index count = 0; count < 20; ++count) {
        Sample target = sample(1, count, 1);
        const double* storage = target.value.data();
        Sample source = sample(2, count, 1);
        source.value.setRandom();
        copySample(target, source);
        EXPECT_TRUE(target.value == source.value) << count;
        EXPECT_EQ(target.timeStamp, 2.0);
        EXPECT_EQ(target.value.data(), storage) << count;
    }
}

}  // namespace
}  // namespace Quoril::Core
