#include "host/Flow.hpp"
#include "host/runner/Script.hpp"
#include "host/runner/StopConditions.hpp"
#include "tests/host/runner/KnobsFilter.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using Testing::KnobsFilter;

class KnobsFlow : public testing::Test {
 protected:
    KnobsFlow() {
        Testing::installKnobs();
        KnobsFilter::log().clear();
        auto& layout = flow_.addLayout("main");
        knobs_ = &dynamic_cast<KnobsFilter&>(flow_.addFilter("FilterKnobs", "a", layout));
    }

    Core::Flow flow_;
    KnobsFilter* knobs_;
    Problems problems_;
};

ScriptEntry set(std::chrono::nanoseconds at, const std::string& property,
                const std::string& value) {
    return {at, {"a", property, {"f", 1, 1}}, Text{value, {}}};
}

const auto kNoLoss = [](const RecordingLoss& loss) { FAIL() << loss.cause; };

class Scripts : public KnobsFlow {};

TEST_F(Scripts, RunWhatIsDueInOrder) {
    const std::vector<ScriptEntry> entries = {
        set(1s, "Record", "true"), set(1s, "Freq", "5"), {2s, {"a", "Save", {}}, std::nullopt}};
    std::vector<std::string> told;
    Script script(
        entries, flow_, [&](const std::string& text) { told.push_back(text); }, kNoLoss);
    EXPECT_EQ(script.getNextTime(), 1s);
    script.runDue(999ms, problems_);
    EXPECT_THAT(KnobsFilter::log(), ElementsAre());
    script.runDue(1s, problems_);
    EXPECT_THAT(KnobsFilter::log(), ElementsAre("a.Record=1"));
    EXPECT_EQ(knobs_->freq.get(), 5.0);
    EXPECT_EQ(script.getNextTime(), 2s);
    script.runDue(1h, problems_);
    EXPECT_THAT(KnobsFilter::log(), ElementsAre("a.Record=1", "a.Save"));
    EXPECT_EQ(script.getNextTime(), std::nullopt);
    EXPECT_THAT(told,
                ElementsAre("set 'a.Record' to 'true'", "set 'a.Freq' to '5'", "command 'a.Save'"));
    EXPECT_FALSE(problems_.hasErrors());
}

TEST_F(Scripts, GoOnWhenTheEndOfARecordingIsLost) {
    const std::vector<ScriptEntry> entries = {set(1s, "Record", "true"), set(2s, "Record", "0"),
                                              set(3s, "Freq", "5")};
    std::vector<std::string> losses;
    Script script(
        entries, flow_, [](const std::string&) {},
        [&](const RecordingLoss& loss) { losses.push_back(loss.filter + " " + loss.cause); });
    knobs_->failsToEnd = true;
    script.runDue(3s, problems_);
    EXPECT_THAT(losses, ElementsAre("a No space left on device"));
    EXPECT_FALSE(knobs_->record.get());
    EXPECT_EQ(knobs_->freq.get(), 5.0);
    EXPECT_FALSE(problems_.hasErrors());
}

TEST_F(Scripts, EndAtTheFirstRefusal) {
    const std::vector<ScriptEntry> entries = {set(0s, "Refusing", "x"), set(0s, "Freq", "5")};
    Script script(
        entries, flow_, [](const std::string&) {}, kNoLoss);
    script.runDue(0s, problems_);
    EXPECT_EQ(problems_.toText(), "f:1:1: set 'a.Refusing' to 'x': File not valid.\n");
    EXPECT_EQ(problems_.getExitCode(), 1);
    EXPECT_EQ(knobs_->freq.get(), 200.0);
    EXPECT_EQ(script.getNextTime(), std::nullopt);
}

TEST_F(Scripts, TellOfAPropertyThatIsGone) {
    const std::vector<ScriptEntry> entries = {set(0s, "Gone", "x")};
    Script script(
        entries, flow_, [](const std::string&) {}, kNoLoss);
    script.runDue(0s, problems_);
    EXPECT_EQ(problems_.toText(), "f:1:1: set 'a.Gone' to 'x': the property is gone\n");
}

class Stops : public KnobsFlow {
 protected:
    static StopEntry when(std::vector<std::pair<std::string, std::string>> values) {
        StopEntry entry;
        for (const auto& [property, value] : values)
            entry.when.push_back({{"a", property, {}}, {value, {}}});
        return entry;
    }
    static StopEntry after(std::chrono::nanoseconds time) {
        StopEntry entry;
        entry.after = time;
        return entry;
    }

    int rings_ = 0;
    std::function<void()> ring_ = [this] { ++rings_; };
};

TEST_F(Stops, WithoutEntriesTheEndOfTheSourcesCounts) {
    const StopConditions stops({}, std::nullopt, flow_, ring_);
    EXPECT_TRUE(stops.getEndsWhenFinished());
    EXPECT_FALSE(stops.getEndTime());
    EXPECT_FALSE(stops.isMet(1000h));
}

TEST_F(Stops, EntriesReplaceTheEndOfTheSourcesUnlessTheyNameIt) {
    EXPECT_FALSE(StopConditions({after(1s)}, std::nullopt, flow_, ring_).getEndsWhenFinished());
    StopEntry finished;
    finished.isWhenFinished = true;
    EXPECT_TRUE(
        StopConditions({after(1s), finished}, std::nullopt, flow_, ring_).getEndsWhenFinished());
}

TEST_F(Stops, TheShortestTimeCountsAndTheLimitAddsOne) {
    const StopConditions stops({after(3s), after(2s)}, 5s, flow_, ring_);
    EXPECT_EQ(stops.getEndTime(), 2s);
    EXPECT_FALSE(stops.isMet(2s - 1ns));
    EXPECT_TRUE(stops.isMet(2s));
    const StopConditions limited({}, 1s, flow_, ring_);
    EXPECT_EQ(limited.getEndTime(), 1s);
    EXPECT_TRUE(limited.getEndsWhenFinished());
}

TEST_F(Stops, AValueCountsOnlyAfterAnother) {
    const StopConditions stops({when({{"Record", "false"}})}, std::nullopt, flow_, ring_);
    knobs_->record.set(false);
    EXPECT_FALSE(stops.isMet(0s));
    knobs_->record.set(true);
    EXPECT_FALSE(stops.isMet(0s));
    knobs_->record.set(false);
    EXPECT_TRUE(stops.isMet(0s));
    EXPECT_EQ(rings_, 1);
}

TEST_F(Stops, AShortValueIsNotMissed) {
    const StopConditions stops({when({{"Freq", "5"}})}, std::nullopt, flow_, ring_);
    knobs_->freq.set(5.0);
    knobs_->freq.set(6.0);
    EXPECT_TRUE(stops.isMet(0s));
}

TEST_F(Stops, SeveralValuesMustHoldAtOnce) {
    const StopConditions stops({when({{"Freq", "5"}, {"Mode", "Fast"}})}, std::nullopt, flow_,
                               ring_);
    knobs_->freq.set(5.0);
    knobs_->freq.set(6.0);
    knobs_->mode.set(1);
    EXPECT_FALSE(stops.isMet(0s));
    knobs_->freq.set(5.0);
    EXPECT_TRUE(stops.isMet(0s));
}

TEST_F(Stops, AnyConditionEnds) {
    const StopConditions stops({when({{"Freq", "5"}}), when({{"Mode", "1"}})}, std::nullopt, flow_,
                               ring_);
    knobs_->mode.set(1);
    EXPECT_TRUE(stops.isMet(0s));
}

TEST_F(Stops, NothingIsObservedAfterwards) {
    { const StopConditions stops({when({{"Freq", "5"}})}, std::nullopt, flow_, ring_); }
    knobs_->freq.set(5.0);
    EXPECT_EQ(rings_, 0);
}

}  // namespace
}  // namespace Quoril::Runner
