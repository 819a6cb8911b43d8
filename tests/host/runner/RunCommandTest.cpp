#include "host/runner/Console.hpp"
#include "host/runner/RunCommand.hpp"
#include "tests/host/runner/KnobsFilter.hpp"
#include "tests/support/TemporaryPath.hpp"

#include <cstdio>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using Testing::KnobsFilter;

class RunCommand : public testing::Test {
 protected:
    RunCommand() {
        Testing::installKnobs();
        KnobsFilter::log().clear();
    }
    ~RunCommand() override { std::remove(path_.c_str()); }

    int run(const std::string& text, const RunOptions& given = {}) {
        std::ofstream(path_) << "version: 1\n" << text;
        RunOptions options = given;
        options.flow.path = path_;
        Console console(errors_, false);
        return runFlow(options, console);
    }

    const std::string path_ = Support::uniqueTemporaryPath() + ".yaml";
    std::ostringstream errors_;
};

TEST_F(RunCommand, EndsRecordingsAtTheEnd) {
    EXPECT_EQ(run("filters: [{name: a, class: FilterKnobs, properties: [Record: true]}]\n"
                  "stop: [{for: 1ms}]\n"),
              0);
    EXPECT_THAT(KnobsFilter::log(), ElementsAre("a.Record=1", "a.Record=0"));
}

TEST_F(RunCommand, RunsTheScriptBeforeItsEnd) {
    EXPECT_EQ(run("filters: [{name: a, class: FilterKnobs}]\n"
                  "script:\n- {at: 2ms, command: a.Save}\n- {at: 1ms, set: {a.Record: true}}\n"
                  "stop: [when: {a.Freq: 5}]\n"
                  "# never met: the limit ends the run\n",
                  {.flow = {}, .limit = 50ms, .pacing = {}, .showsProgress = false}),
              0);
    EXPECT_THAT(KnobsFilter::log(), ElementsAre("a.Record=1", "a.Save", "a.Record=0"));
}

TEST_F(RunCommand, ARefusedActionEndsTheRunAndTheRecordings) {
    EXPECT_EQ(run("filters: [{name: a, class: FilterKnobs, properties: [Record: true]}]\n"
                  "script: [{at: 0s, set: {a.Refusing: x}}]\n"),
              1);
    EXPECT_THAT(KnobsFilter::log(), ElementsAre("a.Record=1", "a.Record=0"));
    EXPECT_THAT(errors_.str(),
                testing::EndsWith(":3:25: set 'a.Refusing' to 'x': File not valid.\n"));
}

TEST_F(RunCommand, ALostEndOfARecordingCountsAsLostSamples) {
    EXPECT_EQ(run("filters: [{name: a, class: FilterKnobs, "
                  "properties: [File Name: /dev/full, Record: true]}]\n"
                  "stop: [{for: 1ms}]\n"),
              3);
    EXPECT_THAT(errors_.str(), testing::MatchesRegex(
                                   "filter 'a': the end of the recording to '/dev/full' is lost: "
                                   "No space left on device\n(.|\n)*"));
}

TEST_F(RunCommand, AFailureIsToldRatherThanALoss) {
    EXPECT_EQ(run("filters: [{name: a, class: FilterKnobs, "
                  "properties: [File Name: /dev/full, Record: true]}]\n"
                  "script: [{at: 0s, set: {a.Refusing: x}}]\n"),
              1);
}

TEST_F(RunCommand, AWrongFlowStartsNothing) {
    EXPECT_EQ(run("filters:\n"
                  "- {name: a, class: FilterKnobs, properties: [Record: true]}\n"
                  "- {name: b, class: FilterKnobs, properties: [Freq: fast]}\n"),
              2);
    EXPECT_THAT(KnobsFilter::log(), ElementsAre());
}

}  // namespace
}  // namespace Quoril::Runner
