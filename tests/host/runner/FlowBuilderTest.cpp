#include "host/Flow.hpp"
#include "host/runner/FlowBuilder.hpp"
#include "host/runner/FlowFile.hpp"
#include "tests/host/runner/KnobsFilter.hpp"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

using testing::ElementsAre;
using Testing::KnobsFilter;

class FlowBuilding : public testing::Test {
 protected:
    FlowBuilding() {
        Testing::installKnobs();
        KnobsFilter::log().clear();
    }

    /// Builds the flow of that text, after "version: 1".
    std::string build(const std::string& text) {
        model_ = parseFlow("version: 1\n" + text, "f", lookUpEnvironment, problems_);
        if (!problems_.hasErrors()) builder_.build();
        return problems_.toText();
    }

    KnobsFilter& knobs(const std::string& name) {
        return dynamic_cast<KnobsFilter&>(*flow_.findFilter(name));
    }

    Problems problems_;
    FlowModel model_;
    Core::Flow flow_;
    FlowBuilder builder_{model_, flow_, problems_};
};

TEST_F(FlowBuilding, SetsPropertiesInTheirOrderAndConnectsAfterwards) {
    EXPECT_EQ(build(R"(
layouts: [main, other]
filters:
- name: a
  class: FilterKnobs
  properties: [Mode: Fast, Freq: 819.2345678]
- name: b
  class: FilterKnobs
  layout: other
  properties: [Pins Number: 2]
connections:
- a.out -> b.input#1
- 'a.out -> b.input#2 {buffer: 3, lifo: true}'
- a.out -> b.calibInput#1
)"),
              "");
    EXPECT_EQ(knobs("a").mode.get(), 1U);
    EXPECT_EQ(knobs("a").freq.get(), 819.2345678);
    EXPECT_NE(knobs("a").getManager(), knobs("b").getManager());
    const auto* first = knobs("b").findInputPin("input#1");
    EXPECT_EQ(first->getOutputPin(), &knobs("a").out);
    EXPECT_EQ(first->getBuffer().size, 256U);
    EXPECT_FALSE(first->getBuffer().isLifo);
    EXPECT_EQ(knobs("b").findInputPin("input#2")->getBuffer().size, 3U);
    EXPECT_TRUE(knobs("b").findInputPin("input#2")->getBuffer().isLifo);
    EXPECT_EQ(knobs("b").calib.getBuffer().size, 1U);
}

TEST_F(FlowBuilding, LeavesSwitchesAndWrittenFilesForTheEnd) {
    EXPECT_EQ(build(R"(
filters:
- {name: b, class: FilterKnobs, properties: [File Name: x, Record: true, Pins Number: 1]}
- {name: a, class: FilterKnobs, properties: [Record: 1]}
connections: [a.out -> b.input#1]
)"),
              "");
    EXPECT_THAT(KnobsFilter::log(), ElementsAre("b.Pins Number"));
    builder_.setSwitches();
    EXPECT_THAT(KnobsFilter::log(),
                ElementsAre("b.Pins Number", "b.File Name=x", "b.Record=1", "a.Record=1"));
    EXPECT_EQ(problems_.toText(), "");
}

TEST_F(FlowBuilding, TellsOfWrongNamesWithTheNearest) {
    EXPECT_EQ(build(R"(
filters:
- {name: a, class: FilterKnobz}
- {name: rec, class: FilterKnobs, properties: [Recrod: true, Pins Number: 1]}
- {name: c, class: FilterKnobs}
connections:
- rec.oout -> rec.input#1
- rec.out -> rec.input#2
script:
- {at: 1s, set: {rec.Frek: 1}}
- {at: 1s, command: rec.Sav}
stop:
- when: {rec.Reccord: false}
)"),
              "f:4:20: filter 'a': no loaded plug-in has a class 'FilterKnobz'; did you mean "
              "'FilterKnobs'?\n"
              "f:5:48: filter 'rec' has no property 'Recrod'; did you mean 'Record'?\n"
              "f:8:3: filter 'rec' has no output pin 'oout'; did you mean 'out'?\n"
              "f:9:3: filter 'rec' has no input pin 'input#2'; did you mean 'input#1'?\n"
              "f:11:18: filter 'rec' has no property 'Frek'; did you mean 'Freq'?\n"
              "f:12:21: filter 'rec' has no property 'Sav'; did you mean 'Save'?\n"
              "f:14:10: filter 'rec' has no property 'Reccord'; did you mean 'Record'?\n");
    EXPECT_EQ(problems_.getExitCode(), 2);
}

TEST_F(FlowBuilding, TellsOfWrongTexts) {
    EXPECT_EQ(
        build(R"(
filters:
- {name: a, class: FilterKnobs, properties: [Freq: '1,5', Record: yes, Mode: Quick]}
- {name: b, class: FilterKnobs, properties: [Save: 1, Shown: 3]}
- {name: c, class: FilterKnobs}
script:
- {at: 1s, set: {c.Mode: Fats}}
- {at: 1s, set: {c.Save: 1}}
- {at: 1s, command: c.Freq}
stop:
- when: {c.Record: 2}
)"),
        "f:4:52: property 'Freq' of filter 'a' cannot be set to '1,5': '1,5' is not a number "
        "such as -1.5 or 2e-3\n"
        "f:4:67: property 'Record' of filter 'a' cannot be set to 'yes': 'yes' is not true or "
        "false\n"
        "f:4:78: property 'Mode' of filter 'a' cannot be set to 'Quick': 'Quick' is not one of "
        "the choices; there are 'Slow', 'Fast'\n"
        "f:5:52: property 'Save' of filter 'b' cannot be set to '1': it is a command; call it "
        "from the script\n"
        "f:5:62: property 'Shown' of filter 'b' cannot be set to '3': Property 'Shown' is not "
        "writable\n"
        "f:8:26: property 'Mode' of filter 'c': 'Fats' is not one of the choices; did you mean "
        "'Fast'?\n"
        "f:9:26: property 'Save' of filter 'c': 'Save' is a command, which has no value\n"
        "f:10:21: property 'Freq' of filter 'c' is no command\n"
        "f:12:20: property 'Record' of filter 'c': '2' is not true or false\n");
}

TEST_F(FlowBuilding, DoesNotTellOfWhatFollowsFromARefusal) {
    EXPECT_EQ(build(R"(
filters:
- {name: a, class: FilterKnobs, properties: [Pins Number: 25, ColNames#1: x]}
connections: [a.out -> a.input#1]
)"),
              "f:4:59: property 'Pins Number' of filter 'a' cannot be set to '25': '25' is not a "
              "whole number from 0 to 3\n");
}

TEST_F(FlowBuilding, WhatAFilterRefusesIsAFailureNotAWrongFile) {
    EXPECT_EQ(build("filters: [{name: a, class: FilterKnobs, properties: [Refusing: x.bin]}]\n"),
              "f:2:64: property 'Refusing' of filter 'a' cannot be set to 'x.bin': File not "
              "valid.\n");
    EXPECT_EQ(problems_.getExitCode(), 1);
}

TEST_F(FlowBuilding, AddsWhatTheSystemHasAgainstAFileThatIsRead) {
    const std::string folder = std::filesystem::canonical(testing::TempDir()).string();
    EXPECT_EQ(build("filters:\n"
                    "- {name: a, class: FilterKnobs, properties: [Read File: /no/such]}\n"
                    "- {name: b, class: FilterKnobs, properties: [Read File: " +
                    folder +
                    "]}\n- {name: c, class: FilterKnobs, properties: [Read File: "
                    "/dev/null]}\n"),
              "f:3:57: property 'Read File' of filter 'a' cannot be set to '/no/such': File not "
              "valid. (/no/such does not exist)\n"
              "f:4:57: property 'Read File' of filter 'b' cannot be set to '" +
                  folder + "': File not valid. (" + folder +
                  " is a folder)\n"
                  "f:5:57: property 'Read File' of filter 'c' cannot be set to '/dev/null': "
                  "'/dev/null' is a device, no file\n");
    EXPECT_EQ(problems_.getExitCode(), 1);
}

TEST_F(FlowBuilding, TellsEachWrongTextThoughAnotherIsWrongForTheSameCause) {
    (void)build(
        "filters: [{name: a, class: FilterKnobs, properties: [Freq: x, Record: x, "
        "Pins Number: 9, Mode: x]}]\n");
    EXPECT_EQ(problems_.getList().size(), 4U) << problems_.toText();
}

TEST_F(FlowBuilding, TellsOfFilesThatCannotBeWritten) {
    EXPECT_EQ(build("filters:\n"
                    "- {name: a, class: FilterKnobs, properties: [File Name: /no/such/x.bin]}\n"
                    "- {name: b, class: FilterKnobs, properties: [File Name: /]}\n"
                    "- {name: c, class: FilterKnobs, properties: [File Name: '-']}\n"
                    "- {name: d, class: FilterKnobs, properties: [File Name: '']}\n"
                    "- {name: e, class: FilterKnobs, properties: [File Name: /dev/null]}\n"
                    "- {name: f, class: FilterKnobs, properties: [File Name: /dev/null/x]}\n"),
              "f:3:57: property 'File Name' of filter 'a' cannot be set to '/no/such/x.bin': the "
              "folder '/no/such' does not exist\n"
              "f:4:57: property 'File Name' of filter 'b' cannot be set to '/': it is a folder\n"
              "f:8:57: property 'File Name' of filter 'f' cannot be set to '/dev/null/x': "
              "'/dev/null' is no folder\n");
    EXPECT_EQ(problems_.getExitCode(), 1);
}

TEST_F(FlowBuilding, PinsKeepTheSizeThatTheirFilterChoseUnlessOneIsGiven) {
    Core::InputPin<Eigen::MatrixXd> calib("3aGain", nullptr);
    calib.setBuffer({.size = 1});
    Core::InputPin<Eigen::MatrixXd> data("input#1", nullptr);
    ConnectionEntry connection;
    EXPECT_FALSE(chooseBuffer(connection, calib));
    EXPECT_EQ(chooseBuffer(connection, data)->size, 256U);
    connection.isLifo = true;
    EXPECT_EQ(chooseBuffer(connection, calib)->size, 1U);
    EXPECT_EQ(chooseBuffer(connection, data)->size, 256U);
    EXPECT_TRUE(chooseBuffer(connection, data)->isLifo);
    connection.bufferSize = 9;
    EXPECT_EQ(chooseBuffer(connection, calib)->size, 9U);
    data.setBuffer({512, true});
    EXPECT_FALSE(chooseBuffer({}, data)) << "the filter chose it";
}

}  // namespace
}  // namespace Quoril::Runner
