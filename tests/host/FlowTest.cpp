#include "framework/ValueProperty.hpp"
#include "host/Flow.hpp"
#include "tests/host/FlowFixture.hpp"

#include <atomic>

#include <Poco/Exception.h>
#include <Poco/Thread.h>
#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FlowTest : public FlowFixture {};

TEST_F(FlowTest, LayoutsAreFoundByNameAndNamesAreUnique) {
    LayoutManager& added = flow.addLayout("main");
    EXPECT_EQ(flow.findLayout("main"), &added);
    EXPECT_EQ(flow.findLayout("other"), nullptr);
    EXPECT_THROW(flow.addLayout("main"), Poco::ExistsException);
}

TEST_F(FlowTest, FiltersAreListedInOrderOfAdding) {
    auto& b = add<TestSink>("b");
    auto& a = add<TestSource>("a");
    EXPECT_THAT(flow.getFilters(), ElementsAre(&b, &a));
    EXPECT_EQ(flow.findFilter("a"), &a);
    EXPECT_EQ(flow.findFilter("c"), nullptr);
    EXPECT_EQ(a.getManager(), flow.findLayout("main"));
}

TEST_F(FlowTest, UnknownClassAndTakenNameAreRefused) {
    add<TestSink>("a");
    EXPECT_THROW(flow.addFilter("Nothing", "b", layout("main")), Poco::NotFoundException);
    EXPECT_THROW(flow.addFilter("TestSink", "a", layout("main")), Poco::ExistsException);
    EXPECT_EQ(flow.getFilters().size(), 1U);
}

TEST_F(FlowTest, RemovedFilterIsDisconnected) {
    auto& source = add<TestSource>("source");
    auto& pass = add<TestPass>("pass");
    auto& sink = add<TestSink>("sink");
    connect(source, pass);
    connect(pass, sink);
    flow.removeFilter(pass);
    EXPECT_THAT(source.outputs.front()->getAttachedPins(), IsEmpty());
    EXPECT_EQ(sink.inputs.front()->getOutputPin(), nullptr);
    EXPECT_THAT(flow.getFilters(), ElementsAre(&source, &sink));
}

TEST_F(FlowTest, FilterOfAnotherFlowIsRefused) {
    TestSink stranger("stranger");
    EXPECT_THROW(flow.removeFilter(stranger), Poco::NotFoundException);
    EXPECT_THROW(flow.moveFilter(stranger, layout("main")), Poco::NotFoundException);
}

TEST_F(FlowTest, ConnectSetsTheBufferFirst) {
    auto& source = add<TestSource>("source");
    auto& sink = add<TestSink>("sink");
    flow.connect(*source.outputs.front(), *sink.inputs.front(),
                 BufferSettings{.size = 7, .isLifo = true});
    EXPECT_EQ(sink.inputs.front()->getBuffer().size, 7U);
    EXPECT_TRUE(sink.inputs.front()->getBuffer().isLifo);
    EXPECT_THROW(connect(source, sink), Poco::ExistsException);
    flow.disconnect(*source.outputs.front(), *sink.inputs.front());
    EXPECT_EQ(sink.inputs.front()->getOutputPin(), nullptr);
    EXPECT_THROW(
        flow.connect(*source.outputs.front(), *sink.inputs.front(), BufferSettings{.size = 0}),
        Poco::InvalidArgumentException);
    EXPECT_EQ(sink.inputs.front()->getOutputPin(), nullptr);
}

TEST_F(FlowTest, RunsToItsEndAndReportsItsPins) {
    auto& source = add<TestSource>("source");
    source.rowCount = 100;
    auto& pass = add<TestPass>("pass");
    auto& sink = add<TestSink>("sink");
    connect(source, pass);
    connect(pass, sink);
    EXPECT_FALSE(flow.isRunning());
    flow.start();
    EXPECT_TRUE(flow.isRunning());
    ASSERT_TRUE(waitUntilFinished());
    flow.stop();
    EXPECT_FALSE(flow.isRunning());
    EXPECT_EQ(sink.received, numbers(100));
    const std::vector<PinReport> reports = flow.getPinReports();
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[1].filter, "sink");
    EXPECT_EQ(reports[1].pin, "input");
    EXPECT_EQ(reports[1].source, "pass.output");
    EXPECT_EQ(reports[1].counters.pushed, 100U);
    EXPECT_EQ(reports[1].counters.taken, 100U);
    EXPECT_EQ(reports[1].counters.overwritten, 0U);
    EXPECT_EQ(reports[1].waiting, 0U);
    EXPECT_EQ(reports[1].bufferSize, 64U);
}

TEST_F(FlowTest, LostSamplesAreReported) {
    auto& source = add<TestSource>("source");
    source.rowCount = 10;
    source.ownRate = 1e9;
    auto& sink = add<TestSink>("sink");
    sink.onProcess = nullptr;
    flow.connect(*source.outputs.front(), *sink.inputs.front(), BufferSettings{.size = 4});
    flow.start();
    ASSERT_TRUE(waitUntilFinished());
    flow.stop();
    const PinReport report = flow.getPinReports().front();
    EXPECT_EQ(report.counters.overwritten, 6U);
    EXPECT_EQ(report.waiting, 4U);
}

TEST_F(FlowTest, FlowWithoutASourceThatCanTellIsNeverFinished) {
    add<TestSink>("sink");
    EXPECT_FALSE(flow.isFinished());
    flow.start();
    flow.wake();
    EXPECT_FALSE(flow.isFinished());
    flow.stop();
}

TEST_F(FlowTest, StoppedFlowMakesNoCalls) {
    auto& filter = add<TestFilter>("filter");
    flow.start();
    ASSERT_TRUE(waitFor([&] { return look(filter, [&] { return filter.calls > 2; }); }));
    flow.stop();
    const int calls = filter.calls;
    look(filter, [] { return 0; });
    flow.wake();
    EXPECT_EQ(filter.calls, calls);
}

TEST_F(FlowTest, StartAndStopAHundredTimes) {
    auto& source = add<TestSource>("source");
    auto& sink = add<TestSink>("sink", "second");
    connect(source, sink);
    for (int i = 1; i <= 100; ++i) {
        look(source, [&] { return source.rowCount = i; });
        flow.start();
        flow.start();
        ASSERT_TRUE(waitUntilFinished());
        flow.stop();
        flow.stop();
    }
    EXPECT_EQ(sink.received, numbers(100));
}

TEST_F(FlowTest, StopWorksOffWhatWaits) {
    auto& source = add<TestSource>("source");
    auto& pass = add<TestPass>("pass", "second");
    auto& sink = add<TestSink>("sink", "third");
    connect(source, pass);
    connect(pass, sink);
    for (int i = 0; i < 50; ++i)
        source.pushAll(i);
    source.rowCount = 1'000'000'000;
    source.ownRate = 0.001;
    flow.start();
    flow.stop();
    EXPECT_GE(sink.received.size(), 50U);
    EXPECT_EQ(sink.inputs.front()->getWaitingCount(), 0U);
    EXPECT_EQ(pass.inputs.front()->getWaitingCount(), 0U);
}

TEST_F(FlowTest, FeedbackDoesNotKeepAStopFromEnding) {
    auto& pass = add<TestPass>("pass");
    connect(pass, pass);
    pass.onProcess = [&] {
        // Fed for ever, were it not for the end of the run.
        if (pass.calls < 1000) pass.passOne();
    };
    pass.pushAll(1.0);
    flow.start();
    flow.stop();
}

TEST_F(FlowTest, StopWithoutDrainLeavesWhatWaits) {
    auto& source = add<TestSource>("source");
    auto& sink = add<TestSink>("sink");
    std::atomic<bool> mayGo{false};
    sink.onProcess = [&] {
        sink.passOne();
        while (!mayGo)
            Poco::Thread::yield();
    };
    connect(source, sink);
    for (int i = 0; i < 50; ++i)
        source.pushAll(i);
    flow.start();
    ASSERT_TRUE(waitFor([&] { return sink.inputs.front()->getCounters().taken > 0; }));
    std::thread stopper([&] { flow.stop(/*drain=*/false); });
    // The call in progress is awaited; it is the last one if the stop came first.
    mayGo = true;
    stopper.join();
    const auto counters = sink.inputs.front()->getCounters();
    EXPECT_EQ(counters.taken + sink.inputs.front()->getWaitingCount(), 50U);
}

TEST_F(FlowTest, WhatWaitedAtTheStopIsWorkedOffAfterTheNextStart) {
    auto& source = add<TestSource>("source");
    auto& sink = add<TestSink>("sink");
    connect(source, sink);
    source.pushAll(1.0);
    source.pushAll(2.0);
    flow.start();
    ASSERT_TRUE(waitUntilFinished());
    flow.stop();
    EXPECT_THAT(sink.received, ElementsAre(1.0, 2.0));
}

TEST_F(FlowTest, SleepOfAFilterIsEndedByTheStop) {
    auto& filter = add<TestFilter>("filter");
    std::atomic<int> sleeps{0};
    filter.onProcess = [&] {
        for (int slice = 0; slice < 3; ++slice) {
            ++sleeps;
            Poco::Thread::trySleep(3'600'000);
        }
    };
    flow.start();
    ASSERT_TRUE(waitFor([&] { return sleeps > 0; }));
    flow.stop();
}

TEST_F(FlowTest, ErrorsOfCallsAreToldAndTheFlowGoesOn) {
    std::vector<std::string> told;
    flow.setErrorHandler([&](const std::string& filter, const std::string& text) {
        told.push_back(filter + ": " + text);
    });
    auto& broken = add<TestFilter>("broken");
    broken.onProcess = [] { throw Poco::DataException("bad row"); };
    auto& source = add<TestSource>("source");
    source.rowCount = 10;
    auto& sink = add<TestSink>("sink");
    connect(source, sink);
    flow.start();
    ASSERT_TRUE(waitFor([&] { return flow.getErrorCount(broken) > 3; }));
    ASSERT_TRUE(waitUntilFinished());
    flow.stop();
    EXPECT_THAT(told, ElementsAre("broken: Data error: bad row"));
    EXPECT_EQ(sink.received, numbers(10));
    EXPECT_EQ(flow.getErrorCount(sink), 0U);
}

TEST_F(FlowTest, RunningFlowTakesNewLayoutsFiltersAndConnections) {
    auto& source = add<TestSource>("source");
    flow.start();
    auto& sink = add<TestSink>("sink", "late");
    connect(source, sink);
    look(source, [&] { return source.rowCount = 20; });
    ASSERT_TRUE(waitFor([&] { return look(sink, [&] { return sink.received.size() == 20; }); }));
    flow.stop();
    EXPECT_EQ(sink.received, numbers(20));
}

TEST_F(FlowTest, FilterWakesOnAnEditOfItsProperty) {
    auto& source = add<TestSource>("source");
    ValueProperty<int> rows("Rows", source.getPropertyBag());
    source.onProcess = [&] {
        source.rowCount = rows.get();
        source.sendRow();
    };
    flow.start();
    rows.set(5);
    EXPECT_TRUE(waitFor([&] { return look(source, [&] { return source.sentRows == 5; }); }));
    flow.stop();
}

TEST_F(FlowTest, StartAndStopAreRefusedWithinEditsAndCalls) {
    auto& filter = add<TestFilter>("filter");
    {
        const Synchronizer::DisablerLocker edit(filter.getSynchronizer(), nullptr);
        EXPECT_THROW(flow.start(), Poco::IllegalStateException);
        EXPECT_THROW(flow.stop(), Poco::IllegalStateException);
        EXPECT_THROW(flow.addLayout("late"), Poco::IllegalStateException);
    }
    std::atomic<bool> isRefused{false};
    filter.onProcess = [&] {
        try {
            flow.stop();
        } catch (const Poco::IllegalStateException&) {
            isRefused = true;
        }
    };
    flow.start();
    EXPECT_TRUE(waitFor([&] { return isRefused.load(); }));
    flow.stop();
}

TEST_F(FlowTest, DestructionStopsARunningFlow) {
    Flow other;
    auto& source =
        dynamic_cast<TestSource&>(other.addFilter("TestSource", "source", other.addLayout("main")));
    source.rowCount = 1'000'000'000;
    other.start();
}

}  // namespace
}  // namespace Quoril::Core
