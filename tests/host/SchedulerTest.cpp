#include "host/LayoutManager.hpp"
#include "host/Scheduler.hpp"
#include "tests/host/FakeClock.hpp"
#include "tests/host/TestFilters.hpp"

#include <Poco/Exception.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Rounds of one layout, made by the test itself: no threads.
class SchedulerTest : public ::testing::Test {
 protected:
    TestFilter& add(TestFilter& filter) {
        layout_.adopt(filter);
        filter.callLog = &log_;
        return filter;
    }
    static void connect(TestFilter& writer, TestFilter& reader, std::size_t input = 0) {
        writer.outputs.front()->attach(*reader.inputs.at(input), false);
    }
    void begin(Pacing::Mode mode = Pacing::Mode::kOwn) {
        layout_.getScheduler().begin({.mode = mode});
        log_.clear();
    }
    RoundResult round() {
        const Synchronizer::DisablerLocker lock(&layout_.getSynchronizer(), nullptr);
        log_.clear();
        return layout_.getScheduler().round(edits_);
    }
    RoundResult roundAfterEdit() {
        ++edits_;
        return round();
    }
    ~SchedulerTest() override {
        for (TestFilter* filter :
             {static_cast<TestFilter*>(&source_), static_cast<TestFilter*>(&pass_),
              static_cast<TestFilter*>(&sink_), static_cast<TestFilter*>(&other_)})
            if (filter->getManager() != nullptr) layout_.release(*filter);
    }

    FakeClock clock_;
    LayoutManager layout_{"layout", std::chrono::nanoseconds(0), clock_, nullptr};
    TestSource source_{"source"};
    TestPass pass_{"pass"};
    TestSink sink_{"sink"};
    TestFilter other_{"other"};
    std::vector<std::string> log_;
    std::uint64_t edits_ = 0;
};

TEST_F(SchedulerTest, WritersAreCalledBeforeReadersWhateverTheOrderOfAdding) {
    add(sink_);
    add(pass_);
    add(source_);
    source_.rowCount = 1;
    connect(source_, pass_);
    connect(pass_, sink_);
    begin();
    EXPECT_TRUE(round().hasMoved);
    EXPECT_THAT(log_, ElementsAre("source", "pass", "sink"));
    EXPECT_THAT(sink_.received, ElementsAre(0.0));
}

TEST_F(SchedulerTest, IndependentFiltersKeepTheOrderOfAdding) {
    TestFilter first("first");
    TestFilter second("second");
    add(first);
    add(second);
    begin();
    round();
    EXPECT_THAT(log_, ElementsAre("first", "second"));
    layout_.release(first);
    layout_.release(second);
}

TEST_F(SchedulerTest, CycleIsOpenedAtItsFirstFilterAndDoesNotHang) {
    add(other_).addInput("input");
    other_.addOutput("output");
    other_.onProcess = [this] { other_.passOne(); };
    add(pass_);
    connect(other_, pass_);
    connect(pass_, other_);
    TestFilter::push(*pass_.outputs.front(), 7.0, 0.0);
    begin();
    round();
    EXPECT_THAT(log_, ElementsAre("other", "pass"));
    round();
    EXPECT_THAT(log_, ElementsAre("other", "pass"));
}

TEST_F(SchedulerTest, FilterThatFeedsItselfLeavesTheRound) {
    add(pass_);
    connect(pass_, pass_);
    TestFilter::push(*pass_.outputs.front(), 1.0, 0.0);
    begin();
    const RoundResult result = round();
    EXPECT_TRUE(result.hasMoved);
    EXPECT_LE(log_.size(), 2U);
}

TEST_F(SchedulerTest, FilterWithInputsIsNotCalledWithoutData) {
    add(source_);
    add(sink_);
    connect(source_, sink_);
    begin();
    round();
    EXPECT_THAT(log_, ElementsAre("source"));
    EXPECT_FALSE(round().hasMoved);
    EXPECT_THAT(log_, IsEmpty());
}

TEST_F(SchedulerTest, UnconnectedInputMakesNoSource) {
    add(sink_);
    begin();
    EXPECT_FALSE(roundAfterEdit().mustPoll);
    EXPECT_THAT(log_, IsEmpty());
}

TEST_F(SchedulerTest, FilterThatIsNotScheduledIsNeverCalled) {
    class Unscheduled final : public Filter {
     public:
        Unscheduled() : Filter("unscheduled", false) {}
        void process() override { FAIL(); }
        [[nodiscard]] const char* getClassName() const override { return "Unscheduled"; }
    } filter;
    layout_.adopt(filter);
    begin();
    round();
    layout_.release(filter);
}

TEST_F(SchedulerTest, ReaderOfSeveralPinsIsCalledOncePerRowAfterItsWriterEnded) {
    add(other_);
    other_.addOutput("a");
    other_.addOutput("b");
    int row = 0;
    other_.onProcess = [&] { other_.pushAll(row++); };
    add(sink_);
    sink_.addInput("input#2");
    other_.outputs[0]->attach(*sink_.inputs[0], false);
    other_.outputs[1]->attach(*sink_.inputs[1], false);
    std::vector<double> pairs;
    sink_.onProcess = [&] {
        pairs.push_back(TestFilter::takeOne(*sink_.inputs[0]));
        pairs.push_back(TestFilter::takeOne(*sink_.inputs[1]));
    };
    begin();
    round();
    EXPECT_THAT(log_, ElementsAre("other", "sink"));
    round();
    EXPECT_THAT(log_, ElementsAre("other", "sink"));
    EXPECT_THAT(pairs, ElementsAre(0.0, 0.0, 1.0, 1.0));
}

TEST_F(SchedulerTest, ReaderIsCalledAgainWhileItTakesAndMoreWaits) {
    add(other_).addOutput("output");
    other_.onProcess = [this] {
        if (other_.calls > 1) return;
        for (int i = 0; i < 5; ++i)
            other_.pushAll(i);
    };
    add(sink_);
    connect(other_, sink_);
    begin();
    round();
    EXPECT_THAT(log_, ElementsAre("other", "sink", "sink", "sink", "sink", "sink"));
    EXPECT_THAT(sink_.received, ElementsAre(0.0, 1.0, 2.0, 3.0, 4.0));
}

TEST_F(SchedulerTest, ReaderThatTakesNothingIsCalledOncePerNews) {
    add(source_).addOutput("spare");
    source_.rowCount = 2;
    add(sink_);
    sink_.onProcess = nullptr;
    connect(source_, sink_);
    begin();
    round();
    EXPECT_THAT(log_, ElementsAre("source", "sink"));
    round();
    EXPECT_THAT(log_, ElementsAre("source", "sink"));
    round();
    EXPECT_THAT(log_, IsEmpty());
    EXPECT_EQ(sink_.inputs[0]->getWaitingCount(), 2U);
}

TEST_F(SchedulerTest, EditGivesAReaderWithWaitingSamplesOneMoreCall) {
    add(source_);
    source_.rowCount = 1;
    add(sink_);
    sink_.onProcess = nullptr;
    connect(source_, sink_);
    begin();
    round();
    round();
    sink_.onProcess = [this] { sink_.passOne(); };
    roundAfterEdit();
    EXPECT_THAT(log_, ElementsAre("source", "sink"));
    EXPECT_THAT(sink_.received, ElementsAre(0.0));
}

TEST_F(SchedulerTest, FinishedSourceIsCalledOnlyAfterAnEdit) {
    add(source_);
    begin();
    round();
    round();
    EXPECT_THAT(log_, IsEmpty());
    EXPECT_FALSE(roundAfterEdit().mustPoll);
    EXPECT_THAT(log_, ElementsAre("source"));
    round();
    EXPECT_THAT(log_, IsEmpty());
}

TEST_F(SchedulerTest, SourceThatCannotTellIsPolledWhileItSendsNothing) {
    add(other_).addOutput("output");
    begin();
    const RoundResult result = round();
    EXPECT_TRUE(result.mustPoll);
    EXPECT_FALSE(result.hasMoved);
    EXPECT_THAT(log_, ElementsAre("other"));
}

TEST_F(SchedulerTest, DrainedLayoutCallsReadersButNoSources) {
    add(source_);
    source_.rowCount = 100;
    add(sink_);
    connect(source_, sink_);
    begin();
    layout_.getScheduler().drain();
    TestFilter::push(*source_.outputs.front(), 5.0, 0.0);
    round();
    EXPECT_THAT(log_, ElementsAre("sink"));
}

TEST_F(SchedulerTest, ErrorsOfCallsAreCountedAndEachTextIsToldOnce) {
    std::vector<std::string> told;
    layout_.getScheduler().setErrorHandler([&](const std::string& filter, const std::string& text) {
        told.push_back(filter + ": " + text);
    });
    add(other_);
    other_.onProcess = [this] {
        if (other_.calls == 4) throw std::runtime_error("second kind");
        if (other_.calls == 5) throw 5;
        throw Poco::DataException("first kind");
    };
    begin();
    for (int i = 0; i < 5; ++i)
        round();
    EXPECT_THAT(told, ElementsAre("other: Data error: first kind", "other: second kind",
                                  "other: unknown error"));
    EXPECT_EQ(layout_.getScheduler().getSchedule().find(other_)->getErrorCount(), 5U);
}

TEST_F(SchedulerTest, ErrorTextsThatDifferAtEachRowAreToldUpToALimit) {
    int told = 0;
    layout_.getScheduler().setErrorHandler([&](const std::string&, const std::string&) { ++told; });
    add(other_);
    other_.onProcess = [this] { throw std::runtime_error("row " + std::to_string(other_.calls)); };
    begin();
    for (int i = 0; i < 100; ++i)
        round();
    EXPECT_EQ(told, 20);
    EXPECT_EQ(layout_.getScheduler().getSchedule().find(other_)->getErrorCount(), 100U);
}

TEST_F(SchedulerTest, ErrorInACallLeavesTheOtherFiltersRunning) {
    add(source_);
    source_.rowCount = 1;
    add(other_).addInput("input");
    other_.onProcess = [] { throw std::runtime_error("broken"); };
    add(sink_);
    connect(source_, other_);
    connect(source_, sink_);
    begin();
    round();
    EXPECT_THAT(log_, ElementsAre("source", "other", "sink"));
}

TEST_F(SchedulerTest, CallThatReplacesItsPinsIsSurvived) {
    add(source_);
    source_.rowCount = 3;
    add(other_).addInput("input");
    other_.onProcess = [this] {
        other_.inputs.clear();
        other_.addInput("new");
    };
    add(sink_);
    connect(source_, other_);
    connect(source_, sink_);
    begin();
    round();
    EXPECT_THAT(log_, ElementsAre("source", "other"));
    round();
    EXPECT_THAT(log_, ElementsAre("source", "sink", "sink"));
    EXPECT_THAT(sink_.received, ElementsAre(0.0, 1.0));
}

TEST_F(SchedulerTest, ConnectionMadeBetweenRoundsIsFollowed) {
    add(source_);
    source_.rowCount = 2;
    add(sink_);
    begin();
    round();
    connect(source_, sink_);
    round();
    EXPECT_THAT(sink_.received, ElementsAre(1.0));
}

TEST_F(SchedulerTest, MaximumCallsNoSourceWhoseReaderHasNoRoom) {
    add(source_);
    source_.rowCount = 10;
    add(sink_);
    sink_.onProcess = nullptr;
    sink_.inputs[0]->setBuffer({.size = 3});
    connect(source_, sink_);
    begin(Pacing::Mode::kMaximum);
    for (int i = 0; i < 10; ++i)
        round();
    EXPECT_EQ(source_.sentRows, 3);
    EXPECT_EQ(sink_.inputs[0]->getCounters().overwritten, 0U);
    sink_.onProcess = [this] { sink_.passOne(); };
    for (int i = 0; i < 20; ++i)
        roundAfterEdit();
    EXPECT_THAT(sink_.received, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
}

TEST_F(SchedulerTest, MaximumLooksBehindTheFirstReader) {
    add(source_);
    source_.rowCount = 10;
    add(pass_);
    add(sink_);
    sink_.onProcess = nullptr;
    sink_.inputs[0]->setBuffer({.size = 2});
    connect(source_, pass_);
    connect(pass_, sink_);
    begin(Pacing::Mode::kMaximum);
    for (int i = 0; i < 10; ++i)
        round();
    EXPECT_EQ(source_.sentRows, 2);
    EXPECT_EQ(sink_.inputs[0]->getCounters().overwritten, 0U);
}

TEST_F(SchedulerTest, MaximumMindsNoBufferThatKeepsTheNewestOnly) {
    add(source_);
    source_.rowCount = 10;
    add(sink_);
    sink_.onProcess = nullptr;
    sink_.inputs[0]->setBuffer({.size = 1});
    connect(source_, sink_);
    begin(Pacing::Mode::kMaximum);
    for (int i = 0; i < 10; ++i)
        round();
    EXPECT_EQ(source_.sentRows, 10);
}

TEST_F(SchedulerTest, MaximumLeavesRoomForTheLargestBurstSeen) {
    add(other_).addOutput("output");
    other_.onProcess = [this] {
        for (int i = 0; i < 3; ++i)
            other_.pushAll(i);
    };
    add(sink_);
    sink_.onProcess = nullptr;
    sink_.inputs[0]->setBuffer({.size = 8});
    connect(other_, sink_);
    begin(Pacing::Mode::kMaximum);
    for (int i = 0; i < 10; ++i)
        round();
    EXPECT_EQ(sink_.inputs[0]->getWaitingCount(), 6U);
}

TEST_F(SchedulerTest, MaximumHoldsAReaderBackThatFeedsAFullBuffer) {
    add(pass_);
    add(sink_);
    sink_.onProcess = nullptr;
    sink_.inputs[0]->setBuffer({.size = 2});
    add(other_).addOutput("output");
    connect(other_, pass_);
    connect(pass_, sink_);
    for (int i = 0; i < 5; ++i)
        other_.pushAll(i);
    begin(Pacing::Mode::kMaximum);
    for (int i = 0; i < 5; ++i)
        round();
    EXPECT_EQ(pass_.inputs[0]->getWaitingCount(), 3U);
    EXPECT_EQ(sink_.inputs[0]->getCounters().overwritten, 0U);
}

TEST_F(SchedulerTest, OwnPaceWithoutARateWaitsForRoomToo) {
    add(source_);
    source_.rowCount = 10;
    add(sink_);
    sink_.onProcess = nullptr;
    sink_.inputs[0]->setBuffer({.size = 4});
    connect(source_, sink_);
    begin();
    for (int i = 0; i < 10; ++i)
        round();
    EXPECT_EQ(source_.sentRows, 4);
}

TEST_F(SchedulerTest, SourceStateTellsWhoIsFinished) {
    begin();
    round();
    EXPECT_EQ(layout_.getScheduler().getSourceState(), SourceState::kNone);
    add(source_);
    source_.rowCount = 1;
    begin();
    EXPECT_EQ(layout_.getScheduler().getSourceState(), SourceState::kUnfinished);
    round();
    EXPECT_EQ(layout_.getScheduler().getSourceState(), SourceState::kFinished);
}

TEST_F(SchedulerTest, SourceThatCannotTellIsUnfinishedFromItsFirstPushOn) {
    add(other_).addOutput("output");
    begin();
    round();
    EXPECT_EQ(layout_.getScheduler().getSourceState(), SourceState::kNone);
    other_.onProcess = [this] { other_.pushAll(1.0); };
    round();
    EXPECT_EQ(layout_.getScheduler().getSourceState(), SourceState::kUnfinished);
}

}  // namespace
}  // namespace Quoril::Core
