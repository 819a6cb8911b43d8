#include "tests/flows/ModuleFixture.hpp"

using Quoril::Core::Filter;
using Quoril::Core::Flow;
using Quoril::Core::LayoutManager;
using Quoril::Core::TestSink;
using Quoril::Core::TestSource;
using Quoril::Core::waitFor;

namespace {

constexpr int kRows = 3000;

}  // namespace

class RecordReplayTest : public ModuleFixture, public testing::WithParamInterface<bool> {
 protected:
    void record(bool hasTwoLayouts) {
        Flow flow;
        LayoutManager& first = flow.addLayout("first");
        LayoutManager& second = hasTwoLayouts ? flow.addLayout("second") : first;
        TestSource& source = addSource(flow, first, kRows);
        Filter& recorder = addRecorder(flow, second);
        connectRecorder(flow, source, recorder);
        startRecording(recorder, file, GetParam());
        useMaximumPace(flow);
        flow.start();
        EXPECT_TRUE(waitFor([&] { return flow.isFinished(); }));
        flow.stop();
        Harness(recorder).set("Record", false);
        expectNothingLost(flow);
    }

    std::string file = folder.file("recorded.sf");
};

TEST_P(RecordReplayTest, EveryRowIsRecordedInOneLayout) {
    record(/*hasTwoLayouts=*/false);
    EXPECT_EQ(readRows(file, GetParam()), countedRows(kRows));
}

TEST_P(RecordReplayTest, EveryRowIsRecordedAcrossTwoLayouts) {
    record(/*hasTwoLayouts=*/true);
    EXPECT_EQ(readRows(file, GetParam()), countedRows(kRows));
}

TEST_P(RecordReplayTest, EveryRowIsReplayedAcrossTwoLayouts) {
    record(/*hasTwoLayouts=*/true);
    Flow flow;
    Filter& player = addPlayer(flow, flow.addLayout("first"));
    auto& sink = dynamic_cast<TestSink&>(
        flow.addFilter(TestSink::kClassName, "sink", flow.addLayout("second")));
    loadPlayer(player, file, GetParam());
    flow.connect(*player.findOutputPin("VALUE"), *sink.inputs.at(0));
    Harness(player).set("Replay", true);
    useMaximumPace(flow);
    flow.start();
    EXPECT_TRUE(waitUntilReplayed(player));
    flow.stop();
    expectNothingLost(flow);
    std::vector<double> expected;
    for (int i = 0; i < kRows; ++i)
        expected.push_back(i);
    EXPECT_EQ(sink.received, expected);
}

TEST_P(RecordReplayTest, RecordingOfAReplayHasTheSameRowsInTheOtherEncoding) {
    record(/*hasTwoLayouts=*/true);
    const std::string copy = folder.file("copy.sf");
    Flow flow;
    Filter& player = addPlayer(flow, flow.addLayout("first"));
    Filter& recorder = addRecorder(flow, flow.addLayout("second"));
    loadPlayer(player, file, GetParam());
    Harness rec(recorder);
    rec.set("Pins Number", 2);
    rec.set("ColNames#1", "COUNT");
    rec.choose("ColTypes#1", "UINT32");
    rec.set("ColNames#2", "VALUE");
    rec.choose("ColTypes#2", "DOUBLE");
    flow.connect(*player.findOutputPin("COUNT"), rec.input("input#1"));
    flow.connect(*player.findOutputPin("VALUE"), rec.input("input#2"));
    startRecording(recorder, copy, !GetParam());
    Harness(player).set("Replay", true);
    useMaximumPace(flow);
    flow.start();
    EXPECT_TRUE(waitUntilReplayed(player));
    flow.stop();
    rec.set("Record", false);
    EXPECT_EQ(readRows(copy, !GetParam()), countedRows(kRows));
}

TEST_P(RecordReplayTest, FlowStartedAndStoppedAHundredTimesRecordsWithoutAGap) {
    Flow flow;
    TestSource& source = addSource(flow, flow.addLayout("first"), 1000000000);
    Filter& recorder = addRecorder(flow, flow.addLayout("second"));
    connectRecorder(flow, source, recorder);
    startRecording(recorder, file, GetParam());
    useMaximumPace(flow);
    for (int i = 0; i < 100; ++i) {
        const int rowsBefore = source.sentRows;
        flow.start();
        EXPECT_TRUE(waitFor([&] {
            const Quoril::Core::Synchronizer::DisablerLocker lock(source.getSynchronizer(),
                                                                  nullptr);
            return source.sentRows > rowsBefore;
        }));
        flow.stop();
    }
    Harness(recorder).set("Record", false);
    EXPECT_EQ(readRows(file, GetParam()), countedRows(source.sentRows));
}

INSTANTIATE_TEST_SUITE_P(Encodings, RecordReplayTest, testing::Bool(),
                         [](const auto& encoding) { return encoding.param ? "Binary" : "Text"; });
