#include "host/PropertyStore.hpp"
#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/flows/ModuleFixture.hpp"

using Quoril::Core::Filter;
using Quoril::Core::Flow;
using Quoril::Core::LayoutManager;
using Quoril::Core::TestSource;
using Quoril::Core::waitFor;
using testing::ElementsAre;
using testing::IsEmpty;
namespace PropertyStore = Quoril::Core::PropertyStore;

class RestoredFlowTest : public ModuleFixture {
 protected:
    // A filter of the same class that got all its properties from saved text.
    Filter& restore(Filter& filter) {
        Filter& restored = flow.addFilter(filter.getClassName(), filter.getName() + "'", layout);
        EXPECT_THAT(PropertyStore::restore(restored, PropertyStore::save(filter)), IsEmpty());
        EXPECT_EQ(PropertyStore::save(restored), PropertyStore::save(filter));
        EXPECT_EQ(Harness(restored).propertyNames(), Harness(filter).propertyNames());
        EXPECT_EQ(Harness(restored).inputNames(), Harness(filter).inputNames());
        EXPECT_EQ(Harness(restored).outputNames(), Harness(filter).outputNames());
        return restored;
    }

    void writeFile() {
        SensorFile::SensorFileConfig config;
        for (const char* name : {"ACCX", "ACCY", "COUNT"})
            config.addColumn(name, SensorFile::kDouble);
        config.addCalibData("Gain", Support::column({1.0}));
        SensorFile::SensorFileWriter writer;
        writer.open(file, config, /*binary=*/false, /*writeHeaders=*/true);
        writer.close();
    }

    std::string file = folder.file("a.sf");
    Flow flow;
    LayoutManager& layout = flow.addLayout("main");
};

TEST_F(RestoredFlowTest, RecorderComesBackWithItsPinsAndRecords) {
    TestSource& source = addSource(flow, layout, 10);
    Filter& recorder = addRecorder(flow, layout);
    Harness rec(recorder);
    rec.set("Binary", true);
    rec.set("File Name", file);
    rec.set("Save Timestamp", true);
    rec.set("TimeStampColName", "TIME");
    rec.choose("TimeStampColType", "UINT32");
    rec.set("Freq", 819.2);
    rec.set("Double Precision", 9);
    rec.set("Pins Number", 2);
    rec.set("ColNames#1", "a b");
    rec.set("ColNames#2", "VALUE");
    rec.choose("ColTypes#2", "INT64");
    rec.set("Calib Pins Number", 1);
    rec.set("CalibColNames#1", "Gain");
    rec.choose("CalibColTypes#1", "INT32");
    Filter& restored = restore(recorder);
    Harness again(restored);
    again.set("Save Timestamp", false);
    again.set("Calib Pins Number", 0);
    connectRecorder(flow, source, restored);
    again.set("Record", true);
    useMaximumPace(flow);
    flow.start();
    EXPECT_TRUE(waitFor([&] { return flow.isFinished(); }));
    flow.stop();
    again.set("Record", false);
    EXPECT_EQ(readRows(file, /*binary=*/true), countedRows(10));
}

TEST_F(RestoredFlowTest, RunningRecorderComesBackAtRest) {
    Filter& recorder = addRecorder(flow, layout);
    Harness rec(recorder);
    rec.set("Pins Number", 1);
    rec.set("ColNames#1", "a");
    startRecording(recorder, file, /*binary=*/false);
    Filter& restored = restore(recorder);
    EXPECT_FALSE(Harness(restored).get<bool>("Record"));
    EXPECT_THAT(Harness(restored).lockedNames(), ElementsAre("Calib Version"));
}

TEST_F(RestoredFlowTest, PlayerComesBackWithItsFileLoaded) {
    writeFile();
    Filter& player = addPlayer(flow, layout);
    loadPlayer(player, file, /*binary=*/false);
    Filter& restored = restore(player);
    EXPECT_THAT(Harness(restored).outputNames(), ElementsAre("ACC", "COUNT", "Gain"));
    EXPECT_EQ(Harness(restored).get<double>("Frequency"), 200.0);
    Harness(restored).set("Replay", true);
    EXPECT_TRUE(Harness(restored).get<bool>("Replay"));
}

TEST_F(RestoredFlowTest, PlayerWithNamedPinsComesBackReadyToReplay) {
    writeFile();
    Filter& player = addPlayer(flow, layout);
    Harness replay(player);
    replay.set("Auto Detect Output", false);
    replay.set("Manually Set ColsName", "COUNT ACCY");
    replay.set("Manually Set Calibs Name", "Gain");
    loadPlayer(player, file, /*binary=*/false);
    Filter& restored = restore(player);
    EXPECT_THAT(Harness(restored).outputNames(), ElementsAre("COUNT", "ACCY", "Gain"));
    Harness(restored).set("Replay", true);
    EXPECT_TRUE(Harness(restored).get<bool>("Replay"));
}

TEST_F(RestoredFlowTest, PlayerWhoseFileIsGoneTellsSoAndKeepsTheRest) {
    writeFile();
    Filter& player = addPlayer(flow, layout);
    loadPlayer(player, file, /*binary=*/false);
    const auto saved = PropertyStore::save(player);
    Poco::File(file).remove();
    Filter& restored = flow.addFilter(player.getClassName(), "restored", layout);
    const auto problems = PropertyStore::restore(restored, saved);
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].name, "Load File");
    EXPECT_THAT(problems[0].text, testing::HasSubstr("File not valid."));
    EXPECT_TRUE(Harness(restored).get<bool>("QuickProcess"));
}
