#include "framework/EnumProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/RangeProperty.hpp"
#include "tests/filters/sensorfile/ReplayFixture.hpp"

using Support::expectThrow;
using testing::ElementsAre;
using testing::IsEmpty;

class ReplayPropertiesTest : public ReplayFixture {};

TEST_F(ReplayPropertiesTest, FreshFilterHasSeventeenProperties) {
    EXPECT_THAT(
        replay.propertyNames(),
        ElementsAre("Auto Detect Output", "MinSize AutoDetectName", "Manually Set ColsName",
                    "Manually Set Calibs Name", "Binary", "Load File", "Reload File", "Frequency",
                    "Calib Version", "Replay", "Pause", "AutoReplay", "TimeStampMode",
                    "EnableFileTimeStamp", "TimeStampColName", "SampleDelay", "QuickProcess"));
    EXPECT_TRUE(replay.get<bool>("Auto Detect Output"));
    EXPECT_EQ(replay.get<int>("MinSize AutoDetectName"), 3);
    EXPECT_EQ(replay.get<std::string>("Manually Set ColsName"), "");
    EXPECT_EQ(replay.get<std::string>("Manually Set Calibs Name"), "");
    EXPECT_TRUE(replay.get<bool>("Binary"));
    EXPECT_EQ(replay.get<std::string>("Load File"), "");
    EXPECT_EQ(replay.get<double>("Frequency"), 0.0);
    EXPECT_EQ(replay.get<int>("Calib Version"), 0);
    EXPECT_FALSE(replay.get<bool>("Replay"));
    EXPECT_FALSE(replay.get<bool>("Pause"));
    EXPECT_FALSE(replay.get<bool>("AutoReplay"));
    EXPECT_EQ(replay.get<unsigned>("TimeStampMode"), 0U);
    EXPECT_TRUE(replay.get<bool>("EnableFileTimeStamp"));
    EXPECT_EQ(replay.get<std::string>("TimeStampColName"), "COUNT");
    EXPECT_EQ(replay.get<int>("SampleDelay"), 10);
    EXPECT_FALSE(replay.get<bool>("QuickProcess"));
}

TEST_F(ReplayPropertiesTest, FreshFilterHasNoPins) {
    EXPECT_THAT(replay.inputNames(), IsEmpty());
    EXPECT_THAT(replay.outputNames(), IsEmpty());
}

TEST_F(ReplayPropertiesTest, TellsItsClassAndInstance) {
    EXPECT_STREQ(filter.getClassName(), "FilterReplaySensorFile");
    EXPECT_EQ(filter.getName(), "player");
}

TEST_F(ReplayPropertiesTest, DisplaysListsAndDelayAreLockedAtFirst) {
    EXPECT_THAT(replay.lockedNames(),
                ElementsAre("Manually Set ColsName", "Manually Set Calibs Name", "Frequency",
                            "Calib Version", "SampleDelay"));
}

TEST_F(ReplayPropertiesTest, ReplayAndPauseAreNeverSaved) {
    for (const std::string& name : replay.propertyNames()) {
        if (name == "Reload File") continue;
        EXPECT_EQ(replay.property(name).getIsPersistent(), name != "Replay" && name != "Pause")
            << name;
    }
}

TEST_F(ReplayPropertiesTest, RangesAndEntries) {
    const auto& minSize = dynamic_cast<const Quoril::Core::RangeProperty<int>&>(
        replay.property("MinSize AutoDetectName"));
    EXPECT_EQ(minSize.getMinimum(), 1);
    EXPECT_EQ(minSize.getMaximum(), 30);
    EXPECT_EQ(minSize.getStep(), 1);
    const auto& delay =
        dynamic_cast<const Quoril::Core::RangeProperty<int>&>(replay.property("SampleDelay"));
    EXPECT_EQ(delay.getMinimum(), 0);
    EXPECT_EQ(delay.getMaximum(), 1000);
    EXPECT_EQ(delay.getStep(), 1);
    const auto& mode = dynamic_cast<const Quoril::Core::EnumProperty<std::string>&>(
        replay.property("TimeStampMode"));
    EXPECT_THAT(mode.getEntries(), ElementsAre("Ticks", "FrameNumber"));
    const auto& name =
        dynamic_cast<const Quoril::Core::FileNameProperty&>(replay.property("Load File"));
    EXPECT_EQ(name.getFilter(), "*");
    EXPECT_TRUE(name.getExpandVariables());
}

TEST_F(ReplayPropertiesTest, ListsAreEditableWithoutAutoDetectionAndTheSizeWithIt) {
    replay.set("Auto Detect Output", false);
    EXPECT_FALSE(replay.isWritable("MinSize AutoDetectName"));
    EXPECT_TRUE(replay.isWritable("Manually Set ColsName"));
    EXPECT_TRUE(replay.isWritable("Manually Set Calibs Name"));
    replay.set("Auto Detect Output", true);
    EXPECT_TRUE(replay.isWritable("MinSize AutoDetectName"));
    EXPECT_FALSE(replay.isWritable("Manually Set ColsName"));
    EXPECT_FALSE(replay.isWritable("Manually Set Calibs Name"));
}

TEST_F(ReplayPropertiesTest, SwitchingAutoDetectionOffMakesTheNamedPins) {
    columns({"a", "COUNT"});
    write({});
    load();
    replay.set("Auto Detect Output", false);
    EXPECT_THAT(replay.outputNames(), IsEmpty());
    replay.set("Manually Set ColsName", "x, y");
    replay.set("Manually Set Calibs Name", "K");
    EXPECT_THAT(replay.outputNames(), IsEmpty());
    replay.set("Auto Detect Output", true);
    EXPECT_THAT(replay.outputNames(), IsEmpty());
    replay.set("Auto Detect Output", false);
    EXPECT_THAT(replay.outputNames(), ElementsAre("x", "y", "K"));
    replay.set("Auto Detect Output", true);
    EXPECT_THAT(replay.outputNames(), ElementsAre("x", "y", "K"));
}

TEST_F(ReplayPropertiesTest, ChangedAutoDetectionAsksForALoad) {
    columns({"a", "COUNT"});
    write({{1.0, 2.0}});
    load();
    const auto refused = [&] {
        expectThrow<Poco::IOException>("parameters has changed, you must Load/Reload your file!",
                                       [&] { replay.set("Replay", true); });
        EXPECT_FALSE(isReplaying());
        EXPECT_TRUE(replay.isWritable("Load File"));
    };
    replay.set("Auto Detect Output", false);
    refused();
    replay.set("Auto Detect Output", true);
    refused();
    replay.trigger("Reload File");
    replay.set("Replay", true);
    EXPECT_TRUE(isReplaying());
}

TEST_F(ReplayPropertiesTest, OnlyALoadThatSucceedsEndsTheAskingForOne) {
    columns({"a", "COUNT"});
    write({{1.0, 2.0}});
    replay.set("Auto Detect Output", false);
    const auto refused = [&] {
        expectThrow<Poco::IOException>("parameters has changed, you must Load/Reload your file!",
                                       [&] { replay.set("Replay", true); });
    };
    refused();
    replay.set("Load File", "");
    refused();
    replay.set("Manually Set ColsName", "missing");
    EXPECT_THROW(load(), Poco::DataException);
    EXPECT_THROW(replay.set("Replay", true), Poco::NoPermissionException);
    replay.set("Manually Set ColsName", "a");
    load();
    replay.set("Replay", true);
    EXPECT_TRUE(isReplaying());
}

TEST_F(ReplayPropertiesTest, AutoDetectionSetToWhatItIsAsksForNothing) {
    columns({"a", "COUNT"});
    write({{1.0, 2.0}});
    load();
    replay.set("Auto Detect Output", true);
    EXPECT_THAT(replay.outputNames(), ElementsAre("a", "COUNT"));
    replay.set("Replay", true);
    EXPECT_TRUE(isReplaying());
}

TEST_F(ReplayPropertiesTest, ReplayingLocksEverythingButItsSwitches) {
    columns({"a", "COUNT"});
    write({{1.0, 2.0}});
    start();
    EXPECT_THAT(
        replay.lockedNames(),
        ElementsAre("Auto Detect Output", "MinSize AutoDetectName", "Manually Set ColsName",
                    "Manually Set Calibs Name", "Binary", "Load File", "Reload File", "Frequency",
                    "Calib Version", "AutoReplay", "TimeStampMode", "EnableFileTimeStamp",
                    "TimeStampColName", "SampleDelay", "QuickProcess"));
    expectThrow<Poco::NoPermissionException>("Property 'Reload File' is not writable",
                                             [&] { replay.trigger("Reload File"); });
    EXPECT_TRUE(replay.isWritable("Replay"));
    EXPECT_TRUE(replay.isWritable("Pause"));
    stop();
    EXPECT_THAT(replay.lockedNames(),
                ElementsAre("Manually Set ColsName", "Manually Set Calibs Name", "Frequency",
                            "Calib Version"));
}

TEST_F(ReplayPropertiesTest, StoppingUnlocksTheListsInsteadWithoutAutoDetection) {
    columns({"a", "COUNT"});
    write({{1.0, 2.0}});
    replay.set("Auto Detect Output", false);
    replay.set("Manually Set ColsName", "a");
    load();
    replay.set("Replay", true);
    stop();
    EXPECT_THAT(replay.lockedNames(),
                ElementsAre("MinSize AutoDetectName", "Frequency", "Calib Version"));
}

TEST_F(ReplayPropertiesTest, StopGivesBackWhatTheLoadHadLocked) {
    columns({"a", "COUNT"}, /*frequency=*/0.0);
    write({{1.0, 2.0}});
    load();
    EXPECT_FALSE(replay.isWritable("EnableFileTimeStamp"));
    stop();
    EXPECT_TRUE(replay.isWritable("EnableFileTimeStamp"));
    EXPECT_TRUE(replay.isWritable("TimeStampColName"));
    EXPECT_TRUE(replay.isWritable("SampleDelay"));
}
