#include "framework/InputPin.hpp"
#include "tests/framework/PinSupport.hpp"

#include <Poco/Exception.h>
#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::Input;
using FrameworkTest::Node;
using FrameworkTest::numberOf;
using FrameworkTest::Output;
using FrameworkTest::readAll;
using FrameworkTest::Sample;
using FrameworkTest::sample;
using FrameworkTest::write;
using testing::ElementsAre;
using testing::IsEmpty;

class InputPinTest : public testing::Test {
 public:
    InputPinTest() { output.attach(input, /*skipNotification=*/false); }

    Node source{"source"};
    Node sink{"sink"};
    Output output{"out", &source};
    Input input{"in", &sink};
};

TEST_F(InputPinTest, FreshOneIsUnconnectedNonBlockingAndKeepsOneSample) {
    const Input fresh("fresh", &sink);
    EXPECT_EQ(fresh.getName(), "fresh");
    EXPECT_EQ(fresh.getManager(), &sink);
    EXPECT_EQ(fresh.getSynchronizer(), sink.getSynchronizer());
    EXPECT_EQ(fresh.getOutputPin(), nullptr);
    EXPECT_FALSE(fresh.getIsBlocking());
    EXPECT_FALSE(fresh.getIsSynchronous());
    EXPECT_EQ(fresh.getBuffer().size, 1U);
    EXPECT_FALSE(fresh.getBuffer().isLifo);
    EXPECT_FALSE(fresh.hasData());
    EXPECT_EQ(fresh.peek(), nullptr);
    EXPECT_EQ(fresh.getLastTime(), 0.0);
    EXPECT_EQ(fresh.getWaitingCount(), 0U);
}

TEST_F(InputPinTest, WithoutAFilterHasNoSynchronizerAndWorks) {
    Input alone("alone", nullptr);
    EXPECT_EQ(alone.getSynchronizer(), nullptr);
    const Sample one = sample(1);
    alone.push(one);
    EXPECT_THAT(readAll(alone), ElementsAre(1));
}

TEST_F(InputPinTest, FifoOfThreeKeepsTheLastThreeInOrder) {
    input.setBuffer({3, false});
    for (const double number : {1, 2, 3, 4})
        write(output, number);
    EXPECT_EQ(input.getWaitingCount(), 3U);
    EXPECT_THAT(readAll(input), ElementsAre(2, 3, 4));
}

TEST_F(InputPinTest, LifoOfThreeGivesTheNewestFirst) {
    input.setBuffer({3, true});
    for (const double number : {1, 2, 3, 4})
        write(output, number);
    EXPECT_THAT(readAll(input), ElementsAre(4, 3, 2));
}

TEST_F(InputPinTest, SingleValueGivesTheNewestOnceThenNothing) {
    write(output, 1);
    write(output, 2);
    EXPECT_THAT(readAll(input), ElementsAre(2));
    EXPECT_FALSE(input.fetch());
}

TEST_F(InputPinTest, FetchedSampleIsTheReadersOwn) {
    // The single-value buffer of one thread hands out the writer's sample itself.
    write(output, 1);
    ASSERT_TRUE(input.fetch());
    write(output, 2);
    EXPECT_EQ(numberOf(*input.peek()), 1.0);
    EXPECT_EQ(numberOf(*input.take()), 1.0);
    EXPECT_THAT(readAll(input), ElementsAre(2)) << "read once, not twice";
}

TEST_F(InputPinTest, SampleThatWaitsUnfetchedIsTheWritersNewest) {
    write(output, 1);
    output.getValue().setConstant(7);
    ASSERT_TRUE(input.fetch());
    EXPECT_TRUE((input.peek()->value.array() == 7.0).all()) << "a pointer waits, not a copy";
}

TEST_F(InputPinTest, FetchKeepsASampleThatWasNotTaken) {
    input.setBuffer({4, false});
    write(output, 1);
    write(output, 2);
    ASSERT_TRUE(input.fetch());
    ASSERT_TRUE(input.fetch());
    EXPECT_TRUE(input.hasData());
    EXPECT_EQ(numberOf(*input.peek()), 1.0);
    EXPECT_EQ(input.getWaitingCount(), 1U);
    EXPECT_EQ(numberOf(*input.take()), 1.0);
    EXPECT_FALSE(input.hasData());
    EXPECT_THAT(readAll(input), ElementsAre(2));
}

TEST_F(InputPinTest, TakeOfNothingIsNullAndLeavesTheTime) {
    write(output, 3);
    ASSERT_TRUE(input.fetch());
    EXPECT_EQ(input.getLastTime(), 0.0) << "fetching is not taking";
    input.take();
    EXPECT_EQ(input.getLastTime(), 3.0);
    EXPECT_EQ(input.take(), nullptr);
    EXPECT_EQ(input.getLastTime(), 3.0);
}

TEST_F(InputPinTest, ClearForgetsSampleTimeAndBuffer) {
    input.setBuffer({4, false});
    for (const double number : {1, 2, 3})
        write(output, number);
    ASSERT_TRUE(input.fetch());
    input.take();
    ASSERT_TRUE(input.fetch());
    input.clear();
    EXPECT_FALSE(input.hasData());
    EXPECT_EQ(input.getLastTime(), 0.0);
    EXPECT_EQ(input.getWaitingCount(), 0U);
    EXPECT_FALSE(input.fetch());
    EXPECT_EQ(input.getOutputPin(), &output);
}

TEST_F(InputPinTest, NewBufferForgetsWhatWaited) {
    input.setBuffer({4, false});
    write(output, 1);
    write(output, 2);
    ASSERT_TRUE(input.fetch());
    input.setBuffer({5, true});
    EXPECT_EQ(input.getStrategy().capacity(), 5U);
    EXPECT_FALSE(input.hasData());
    EXPECT_THAT(readAll(input), IsEmpty());
}

TEST_F(InputPinTest, BufferOfSizeZeroIsRefusedAndTheOldOneStays) {
    input.setBuffer({3, false});
    write(output, 1);
    EXPECT_THROW(input.setBuffer({0, false}), Poco::InvalidArgumentException);
    EXPECT_EQ(input.getBuffer().size, 3U);
    EXPECT_THAT(readAll(input), ElementsAre(1));
}

TEST_F(InputPinTest, CountsPushedTakenAndOverwrittenSamples) {
    input.setBuffer({3, false});
    for (const double number : {1, 2, 3, 4, 5})
        write(output, number);
    readAll(input);
    EXPECT_EQ(input.getCounters().pushed, 5U);
    EXPECT_EQ(input.getCounters().taken, 3U);
    EXPECT_EQ(input.getCounters().overwritten, 2U);
}

TEST_F(InputPinTest, CountsGoOnAcrossBuffers) {
    write(output, 1);
    write(output, 2);
    EXPECT_EQ(input.getCounters().overwritten, 1U);
    input.setBuffer({2, false});
    for (const double number : {1, 2, 3})
        write(output, number);
    EXPECT_EQ(input.getCounters().pushed, 5U);
    EXPECT_EQ(input.getCounters().overwritten, 2U);
}

TEST_F(InputPinTest, CountsWhatIsForgottenWithItsBuffer) {
    const auto cleared = [this] { return input.getCounters().cleared; };
    input.setBuffer({4, false});
    for (const double number : {1, 2, 3})
        write(output, number);
    ASSERT_TRUE(input.fetch());  // counts as taken, whatever becomes of it
    input.setBuffer({2, true});
    EXPECT_EQ(cleared(), 2U);
    write(output, 4);
    input.clear();
    EXPECT_EQ(cleared(), 3U);
    write(output, 5);
    output.detach(input, false);
    EXPECT_EQ(cleared(), 4U);
    const PinCounters counters = input.getCounters();
    EXPECT_EQ(counters.pushed, counters.taken + counters.overwritten + counters.cleared);
}

TEST_F(InputPinTest, TypeNameTellsTheTypeOfSamples) {
    const InputPin<double> numbers("numbers", &sink);
    EXPECT_EQ(input.getDataTypeName(), output.getDataTypeName());
    EXPECT_NE(input.getDataTypeName(), numbers.getDataTypeName());
}

}  // namespace
}  // namespace Quoril::Core
