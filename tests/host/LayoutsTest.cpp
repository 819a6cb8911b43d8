#include "host/SynchronizerLock.hpp"
#include "tests/host/FlowFixture.hpp"

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

/// Flows over several layouts, each with its thread.
class LayoutsTest : public FlowFixture {
 protected:
    void runToEnd(Pacing::Mode mode) {
        flow.setPacing({.mode = mode});
        flow.start();
        ASSERT_TRUE(waitUntilFinished());
        flow.stop();
    }
    std::uint64_t countLost() const {
        std::uint64_t lost = 0;
        for (const PinReport& report : flow.getPinReports())
            if (report.bufferSize > 1) lost += report.counters.overwritten;
        return lost;
    }
};

TEST_F(LayoutsTest, EverySampleCrossesInOrder) {
    auto& source = add<TestSource>("source", "first");
    source.rowCount = 5000;
    auto& sink = add<TestSink>("sink", "second");
    connect(source, sink);
    runToEnd(Pacing::Mode::kOwn);
    EXPECT_EQ(sink.received, numbers(5000));
}

TEST_F(LayoutsTest, MaximumLosesNothingThroughSmallBuffers) {
    auto& source = add<TestSource>("source", "first");
    source.rowCount = 3000;
    auto& pass = add<TestPass>("pass", "second");
    auto& sink = add<TestSink>("sink", "third");
    flow.connect(*source.outputs.front(), *pass.inputs.front(), BufferSettings{.size = 2});
    flow.connect(*pass.outputs.front(), *sink.inputs.front(), BufferSettings{.size = 3});
    runToEnd(Pacing::Mode::kMaximum);
    EXPECT_EQ(countLost(), 0U);
    EXPECT_EQ(sink.received, numbers(3000));
}

TEST_F(LayoutsTest, MaximumFeedsASlowAndAFastReaderAlike) {
    auto& source = add<TestSource>("source", "first");
    source.rowCount = 300;
    auto& fast = add<TestSink>("fast", "first");
    auto& slow = add<TestSink>("slow", "second");
    slow.onProcess = [&] {
        slow.passOne();
        std::this_thread::yield();
    };
    connect(source, fast);
    flow.connect(*source.outputs.front(), *slow.inputs.front(), BufferSettings{.size = 4});
    runToEnd(Pacing::Mode::kMaximum);
    EXPECT_EQ(countLost(), 0U);
    EXPECT_EQ(fast.received, numbers(300));
    EXPECT_EQ(slow.received, numbers(300));
}

TEST_F(LayoutsTest, HeldBackSourceGoesOnWhenAnEditMakesRoom) {
    auto& source = add<TestSource>("source", "first");
    source.rowCount = 100;
    auto& sink = add<TestSink>("sink", "second");
    sink.onProcess = nullptr;
    connect(source, sink);
    flow.setPacing({.mode = Pacing::Mode::kMaximum});
    flow.start();
    ASSERT_TRUE(waitFor([&] { return look(source, [&] { return source.sentRows == 64; }); }));
    look(sink, [&] {
        sink.onProcess = [&] { sink.passOne(); };
        return 0;
    });
    ASSERT_TRUE(waitUntilFinished());
    flow.stop();
    EXPECT_EQ(sink.received, numbers(100));
}

TEST_F(LayoutsTest, ReaderInAnotherLayoutNeverSeesHalfARow) {
    auto& source = add<TestSource>("source", "first");
    for (const char* name : {"b", "c", "d"})
        source.addOutput(name);
    source.rowCount = 20000;
    auto& sink = add<TestSink>("sink", "second");
    for (const char* name : {"b", "c", "d"})
        sink.addInput(name);
    int halfRows = 0;
    int wholeRows = 0;
    // Takes early, pin by pin, and loses what it took when a later pin has nothing.
    sink.onProcess = [&] {
        bool isWhole = true;
        for (const auto& input : sink.inputs)
            isWhole = TestFilter::takeOne(*input) == wholeRows + halfRows && isWhole;
        ++(isWhole ? wholeRows : halfRows);
    };
    for (std::size_t i = 0; i < 4; ++i)
        flow.connect(*source.outputs[i], *sink.inputs[i]);
    runToEnd(Pacing::Mode::kMaximum);
    EXPECT_EQ(halfRows, 0);
    EXPECT_EQ(wholeRows, 20000);
}

TEST_F(LayoutsTest, TwoRunsGiveTheSameData) {
    const auto run = [] {
        Flow once;
        auto& source = dynamic_cast<TestSource&>(
            once.addFilter("TestSource", "source", once.addLayout("first")));
        source.rowCount = 2000;
        auto& sink =
            dynamic_cast<TestSink&>(once.addFilter("TestSink", "sink", once.addLayout("second")));
        once.connect(*source.outputs.front(), *sink.inputs.front(), BufferSettings{.size = 5});
        once.setPacing({.mode = Pacing::Mode::kMaximum});
        once.start();
        EXPECT_TRUE(waitFor([&] { return once.isFinished(); }));
        once.stop();
        return sink.received;
    };
    EXPECT_EQ(run(), run());
}

TEST_F(LayoutsTest, BlockingReaderIsEndedByTheStop) {
    auto& source = add<TestSource>("source", "first");
    source.rowCount = 10;
    auto& sink = add<TestSink>("sink", "second");
    connect(source, sink);
    sink.inputs.front()->setIsBlocking(true);
    sink.onProcess = [&] {
        while (sink.inputs.front()->fetch())
            sink.received.push_back(sink.inputs.front()->take()->value(0, 0));
    };
    flow.start();
    ASSERT_TRUE(waitFor([&] { return look(sink, [&] { return sink.received.size() == 10; }); }));
    flow.stop();
    EXPECT_EQ(sink.received, numbers(10));
}

TEST_F(LayoutsTest, FilterThatWaitsInItsCallCanBeRemoved) {
    auto& source = add<TestSource>("source", "first");
    source.rowCount = 1;
    auto& sink = add<TestSink>("sink", "second");
    connect(source, sink);
    sink.inputs.front()->setIsBlocking(true);
    sink.onProcess = [&] {
        while (sink.inputs.front()->fetch())
            sink.received.push_back(sink.inputs.front()->take()->value(0, 0));
    };
    flow.start();
    ASSERT_TRUE(waitFor([&] { return look(sink, [&] { return sink.received.size() == 1; }); }));
    flow.removeFilter(sink);
    flow.stop();
    EXPECT_EQ(flow.getFilters().size(), 1U);
}

TEST_F(LayoutsTest, WaitsThatAStopEndedStayEndedWhenAWaitingFilterIsTakenOut) {
    auto& source = add<TestSource>("source", "first");
    source.rowCount = 1;
    auto& sink = add<TestSink>("sink", "second");
    LayoutManager& second = layout("second");
    connect(source, sink);
    sink.inputs.front()->setIsBlocking(true);
    sink.onProcess = [&] {
        while (sink.inputs.front()->fetch())
            sink.inputs.front()->take();
        second.requestDrain();
    };
    flow.start();
    ASSERT_TRUE(waitFor([&] {
        return look(sink, [&] { return second.getScheduler().getFilterInCall() == &sink; });
    }));
    Poco::Event event;
    bool mayWait = true;
    second.whileAtRest(sink, [&] {
        const std::shared_ptr<Synchronizer::Lock> lock = second.getSynchronizer().getLock();
        mayWait = lock->beginWait(event);
        if (mayWait) lock->endWait(event);
    });
    EXPECT_FALSE(mayWait);
    flow.stop();
}

TEST_F(LayoutsTest, FilterMovesToAnotherLayoutWhileTheFlowRuns) {
    auto& source = add<TestSource>("source", "first");
    source.rowCount = 1'000'000'000;
    source.ownRate = 20000.0;
    auto& pass = add<TestPass>("pass", "first");
    auto& sink = add<TestSink>("sink", "second");
    connect(source, pass);
    connect(pass, sink);
    flow.start();
    for (int i = 0; i < 50; ++i) {
        flow.moveFilter(pass, layout(i % 2 == 0 ? "second" : "first"));
        const std::size_t before = look(sink, [&] { return sink.received.size(); });
        ASSERT_TRUE(
            waitFor([&] { return look(sink, [&] { return sink.received.size() > before; }); }));
    }
    flow.stop();
}

}  // namespace
}  // namespace Quoril::Core
