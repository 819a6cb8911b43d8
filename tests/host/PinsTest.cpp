#include "host/LayoutManager.hpp"
#include "tests/host/TestFilters.hpp"

#include <Poco/Exception.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Sample = TimeStampedData<Eigen::MatrixXd>;

template <template <class, class> class Family>
bool isOfFamily(const MatrixInput& pin) {
    const auto* strategy = &pin.getStrategy();
    return dynamic_cast<const Family<Sample, FifoBuffer<Sample>>*>(strategy) != nullptr;
}
bool isSimple(const MatrixInput& pin) {
    return isOfFamily<SimpleBufferStrategy>(pin);
}
bool isThreadSafe(const MatrixInput& pin) {
    return isOfFamily<ThreadSafeBufferStrategy>(pin);
}
bool isSynchronized(const MatrixInput& pin) {
    return isOfFamily<SynchronizedBufferStrategy>(pin);
}

class PinsTest : public ::testing::Test {
 protected:
    PinsTest() {
        writer_.addOutput("output");
        reader_.addInput("input");
    }
    ~PinsTest() override {
        for (TestFilter* filter : {&writer_, &reader_})
            if (filter->getManager() != nullptr) filter->getManager()->release(*filter);
    }
    MatrixOutput& output() { return *writer_.outputs.front(); }
    MatrixInput& input() { return *reader_.inputs.front(); }

    LayoutManager first_{"first", std::chrono::nanoseconds(0), Clock::steady(), nullptr};
    LayoutManager second_{"second", std::chrono::nanoseconds(0), Clock::steady(), nullptr};
    TestFilter writer_{"writer"};
    TestFilter reader_{"reader"};
};

TEST_F(PinsTest, PinsEnterAndLeaveTheListsOfTheirFilter) {
    MatrixInput& second = reader_.addInput("second");
    EXPECT_THAT(reader_.getInputPins(), ElementsAre(&input(), &second));
    EXPECT_EQ(reader_.findInputPin("second"), &second);
    EXPECT_EQ(writer_.findOutputPin("output"), &output());
    EXPECT_EQ(writer_.findOutputPin("input"), nullptr);
    reader_.inputs.pop_back();
    EXPECT_EQ(reader_.findInputPin("second"), nullptr);
    writer_.outputs.clear();
    EXPECT_THAT(writer_.getOutputPins(), IsEmpty());
}

TEST_F(PinsTest, InputDestroyedWhileConnectedLeavesItsWriter) {
    output().attach(input(), false);
    reader_.inputs.clear();
    EXPECT_THAT(output().getAttachedPins(), IsEmpty());
    writer_.pushAll(1.0);
}

TEST_F(PinsTest, OutputDestroyedWhileConnectedLeavesItsReaders) {
    output().attach(input(), false);
    writer_.pushAll(1.0);
    writer_.outputs.clear();
    EXPECT_EQ(input().getOutputPin(), nullptr);
    EXPECT_FALSE(input().fetch());
}

TEST_F(PinsTest, ConnectionOfFiltersWithoutLayoutsIsDirect) {
    output().attach(input(), false);
    EXPECT_TRUE(input().getIsDirect());
    EXPECT_TRUE(input().getIsSynchronous());
    EXPECT_TRUE(isSimple(input()));
}

TEST_F(PinsTest, ConnectionWithoutAskingIsNotDirect) {
    output().attach(input(), true);
    EXPECT_FALSE(input().getIsDirect());
    EXPECT_FALSE(input().getIsSynchronous());
    EXPECT_TRUE(isThreadSafe(input()));
}

TEST_F(PinsTest, ConnectionIsNotDirectOnceAFilterHasALayout) {
    first_.adopt(writer_);
    output().attach(input(), false);
    EXPECT_FALSE(input().getIsDirect());
    EXPECT_TRUE(isThreadSafe(input()));
}

TEST_F(PinsTest, BufferFollowsTheWritersLayout) {
    first_.adopt(writer_);
    first_.adopt(reader_);
    output().attach(input(), false);
    EXPECT_TRUE(isSimple(input()));
    EXPECT_TRUE(input().getIsSynchronous());
    first_.release(writer_);
    second_.adopt(writer_);
    EXPECT_TRUE(isThreadSafe(input()));
    EXPECT_FALSE(input().getIsSynchronous());
}

TEST_F(PinsTest, BufferFollowsTheReadersLayout) {
    first_.adopt(writer_);
    first_.adopt(reader_);
    output().attach(input(), false);
    first_.release(reader_);
    second_.adopt(reader_);
    EXPECT_TRUE(isThreadSafe(input()));
    second_.release(reader_);
    first_.adopt(reader_);
    EXPECT_TRUE(isSimple(input()));
}

TEST_F(PinsTest, FiltersOfOneLayoutShareItsLock) {
    first_.adopt(writer_);
    first_.adopt(reader_);
    EXPECT_EQ(writer_.getSynchronizer()->getLock(), reader_.getSynchronizer()->getLock());
    first_.release(reader_);
    EXPECT_NE(writer_.getSynchronizer()->getLock(), reader_.getSynchronizer()->getLock());
}

TEST_F(PinsTest, BlockingPinBetweenLayoutsIsSynchronized) {
    first_.adopt(writer_);
    second_.adopt(reader_);
    output().attach(input(), false);
    input().setIsBlocking(true);
    EXPECT_TRUE(isSynchronized(input()));
    input().setIsBlocking(false);
    EXPECT_TRUE(isThreadSafe(input()));
}

TEST_F(PinsTest, BlockingReadOfAStoppedLayoutReturnsAtOnce) {
    first_.adopt(writer_);
    second_.adopt(reader_);
    output().attach(input(), false);
    input().setIsBlocking(true);
    EXPECT_FALSE(input().fetch());
}

TEST_F(PinsTest, BufferOfSizeZeroIsRefusedAndTheOldOneKept) {
    EXPECT_THROW(input().setBuffer({.size = 0}), Poco::InvalidArgumentException);
    EXPECT_EQ(input().getBuffer().size, 64U);
    output().attach(input(), false);
    writer_.pushAll(3.0);
    EXPECT_EQ(TestFilter::takeOne(input()), 3.0);
}

TEST_F(PinsTest, BufferCanBeChangedWhileConnected) {
    output().attach(input(), false);
    writer_.pushAll(1.0);
    input().setBuffer({.size = 2, .isLifo = true});
    for (const double value : {1.0, 2.0, 3.0})
        writer_.pushAll(value);
    EXPECT_EQ(TestFilter::takeOne(input()), 3.0);
    EXPECT_EQ(TestFilter::takeOne(input()), 2.0);
    EXPECT_FALSE(input().fetch());
}

TEST_F(PinsTest, EverySampleIsCounted) {
    input().setBuffer({.size = 2});
    output().attach(input(), false);
    for (int i = 0; i < 5; ++i)
        writer_.pushAll(i);
    TestFilter::takeOne(input());
    const PinCounters counters = input().getCounters();
    EXPECT_EQ(counters.pushed, 5U);
    EXPECT_EQ(counters.taken, 1U);
    EXPECT_EQ(counters.overwritten, 3U);
    EXPECT_EQ(output().getPushCount(), 5U);
    EXPECT_EQ(output().getLastTimeStamp(), 4.0);
}

TEST_F(PinsTest, PinWithoutFilterHasNoSynchronizer) {
    MatrixInput lonely("lonely", nullptr);
    EXPECT_EQ(lonely.getSynchronizer(), nullptr);
    EXPECT_EQ(lonely.getManager(), nullptr);
    lonely.setBuffer({.size = 3});
    output().attach(lonely, false);
    EXPECT_EQ(output().getWaitingCount(), 0U);
}

}  // namespace
}  // namespace Quoril::Core
