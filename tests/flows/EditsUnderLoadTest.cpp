#include "tests/flows/ModuleFixture.hpp"

using Quoril::Core::Filter;
using Quoril::Core::Flow;
using Quoril::Core::Synchronizer;
using Quoril::Core::TestSink;
using Quoril::Core::TestSource;
using Quoril::Core::waitFor;

namespace {

constexpr int kTurns = 40;
// More than the recorder's pins can hold: the last of so many was sent after it had taken some.
constexpr int kMoreThanWait = 300;

}  // namespace

class EditsUnderLoadTest : public ModuleFixture {
 protected:
    static bool waitForRows(TestSource& source, int count) {
        const auto sent = [&] {
            const Synchronizer::DisablerLocker lock(source.getSynchronizer(), nullptr);
            return source.sentRows;
        };
        const int start = sent();
        return waitFor([&] { return sent() - start >= count; });
    }

    static void expectConsecutive(const Rows& rows) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            ASSERT_EQ(rows[i][0], rows[0][0] + static_cast<double>(i));
            ASSERT_EQ(rows[i][1], rows[i][0]);
        }
    }

    std::string file = folder.file("a.sf");
};

TEST_F(EditsUnderLoadTest, RecordingsSwitchedOnAndOffAreWhole) {
    Flow flow;
    TestSource& source = addSource(flow, flow.addLayout("first"), 1000000000);
    Filter& recorder = addRecorder(flow, flow.addLayout("second"));
    connectRecorder(flow, source, recorder);
    useMaximumPace(flow);
    flow.start();
    Harness rec(recorder);
    for (int turn = 0; turn < kTurns; ++turn) {
        const bool binary = turn % 2 == 0;
        startRecording(recorder, file, binary);
        rec.set("Freq", 100.0 + turn);
        EXPECT_TRUE(waitForRows(source, kMoreThanWait));
        rec.set("Record", false);
        const Rows rows = readRows(file, binary);
        EXPECT_FALSE(rows.empty());
        expectConsecutive(rows);
    }
    flow.stop();
}

TEST_F(EditsUnderLoadTest, PinsComeAndGoWhileTheFlowRuns) {
    Flow flow;
    TestSource& source = addSource(flow, flow.addLayout("first"), 1000000000);
    // At a pace of its own the source sends whether there is room or not.
    source.ownRate = 1e6;
    Filter& recorder = addRecorder(flow, flow.addLayout("second"));
    flow.start();
    Harness rec(recorder);
    for (int turn = 0; turn < kTurns; ++turn) {
        connectRecorder(flow, source, recorder);
        rec.set("Save Timestamp", true);
        rec.set("TimeStampColName", "TIME");
        flow.connect(*source.outputs.at(0), rec.input("TimeStampPin"));
        rec.set("Calib Pins Number", 1 + turn % 3);
        EXPECT_TRUE(waitForRows(source, 5));
        rec.set("Calib Pins Number", 0);
        rec.set("Save Timestamp", false);
        rec.set("Pins Number", 0);
    }
    flow.stop();
    EXPECT_TRUE(flow.getPinReports().empty());
}

TEST_F(EditsUnderLoadTest, PlayerIsPausedRestartedAndReloadedWhileTheFlowRuns) {
    {
        Flow flow;
        TestSource& source = addSource(flow, flow.addLayout("first"), 500);
        Filter& recorder = addRecorder(flow, flow.addLayout("second"));
        connectRecorder(flow, source, recorder);
        startRecording(recorder, file, /*binary=*/true);
        useMaximumPace(flow);
        flow.start();
        EXPECT_TRUE(waitFor([&] { return flow.isFinished(); }));
        flow.stop();
        Harness(recorder).set("Record", false);
    }
    Flow flow;
    Filter& player = addPlayer(flow, flow.addLayout("first"));
    auto& sink = dynamic_cast<TestSink&>(
        flow.addFilter(TestSink::kClassName, "sink", flow.addLayout("second")));
    loadPlayer(player, file, /*binary=*/true);
    Harness replay(player);
    replay.set("AutoReplay", true);
    useMaximumPace(flow);
    flow.start();
    const auto received = [&] {
        const Synchronizer::DisablerLocker lock(sink.getSynchronizer(), nullptr);
        return sink.received.size();
    };
    for (int turn = 0; turn < kTurns; ++turn) {
        flow.connect(*player.findOutputPin("VALUE"), *sink.inputs.at(0));
        const std::size_t before = received();
        replay.set("Replay", true);
        EXPECT_TRUE(waitFor([&] { return received() > before; }));
        replay.set("Pause", true);
        replay.set("Pause", false);
        replay.set("Replay", false);
        // Makes the pins anew, which ends their connections.
        replay.trigger("Reload File");
    }
    flow.stop();
    EXPECT_EQ(flow.getErrorCount(player), 0U);
}
