#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/flows/ModuleFixture.hpp"

#include <Poco/Exception.h>

using Quoril::Core::Filter;
using Quoril::Core::Flow;
using Quoril::Core::LayoutManager;
using Quoril::Core::TestSource;
using Quoril::Core::waitFor;

class ModuleLifeTest : public ModuleFixture {};

TEST_F(ModuleLifeTest, UnloadingARecordingModuleClosesItsFileAndTheFlowRunsOn) {
    const std::string file = folder.file("a.sf");
    for (int turn = 0; turn < 5; ++turn) {
        Flow flow;
        LayoutManager& layout = flow.addLayout("main");
        TestSource& source = addSource(flow, layout, 200);
        Filter& recorder = addRecorder(flow, layout);
        connectRecorder(flow, source, recorder);
        startRecording(recorder, file, /*binary=*/true);
        useMaximumPace(flow);
        flow.start();
        EXPECT_TRUE(waitFor([&] { return flow.isFinished(); }));
        loader.unload(MODULE_FILE);
        EXPECT_EQ(flow.findFilter("recorder"), nullptr);
        EXPECT_NE(flow.findFilter("source"), nullptr);
        EXPECT_EQ(readRows(file, /*binary=*/true), countedRows(200));
        EXPECT_THROW(addRecorder(flow, layout), Poco::NotFoundException);
        loader.load(MODULE_FILE);
        addRecorder(flow, layout);
        flow.stop();
    }
}

TEST_F(ModuleLifeTest, UnloadingAReplayingModuleEndsItsCalls) {
    const std::string file = folder.file("a.sf");
    {
        SensorFile::SensorFileConfig config;
        config.addColumn("VALUE", SensorFile::kDouble);
        config.addColumn("COUNT", SensorFile::kUInt16);
        SensorFile::SensorFileWriter writer;
        writer.open(file, config, /*binary=*/true, /*writeHeaders=*/true);
        writer.writeRow(std::vector<double>{1.5, 0.0});
        writer.close();
    }
    for (int turn = 0; turn < 5; ++turn) {
        Flow flow;
        LayoutManager& layout = flow.addLayout("main");
        loadPlayer(addPlayer(flow, layout), file, /*binary=*/true);
        Harness(*flow.findFilter("player")).set("AutoReplay", true);
        Harness(*flow.findFilter("player")).set("Replay", true);
        flow.start();
        loader.unload(MODULE_FILE);
        EXPECT_EQ(flow.findFilter("player"), nullptr);
        flow.stop();
        loader.load(MODULE_FILE);
    }
}
