#include "host/runner/FlowFile.hpp"

#include <cstdio>
#include <ctime>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

using namespace std::chrono_literals;

std::optional<std::string> lookUp(const std::string& name) {
    if (name == "RATE") return "200";
    return std::nullopt;
}

constexpr const char* kWhole = R"(version: 1
plugins:
  - QuorilPluginSensorFile-2.5.0
layouts:
  - sensors
  - name: main
    period: 5ms
filters:
  - name: imu
    class: FilterImuSimulator
    layout: sensors
    properties:
      - Rate: ${RATE}
      - Seed: ${SEED:-7}
  - name: rec
    class: FilterRecordSensorFile
    properties:
      - Pins Number: 1
      - ColNames#1: ax, ay, az
      - Record: true
connections:
  - "imu.acc -> rec.input#1 {buffer: 64}"
  - {from: imu.time, to: rec.TimeStampPin, lifo: true}
script:
  - at: 2s
    command: rec.Flush
  - at: 1.5s
    set: {rec.Record: true, rec.Freq: 100}
stop:
  - for: 10s
  - when: {rec.Record: false, imu.Rate: 1}
  - finished: true
)";

TEST(FlowFile, IsReadWhole) {
    Problems problems;
    const FlowModel model = parseFlow(kWhole, "dir/flow.yaml", lookUp, problems);
    EXPECT_EQ(problems.toText(), "");
    ASSERT_EQ(model.plugins.size(), 1U);
    EXPECT_EQ(model.plugins[0].baseFolder, "dir");
    ASSERT_EQ(model.layouts.size(), 2U);
    EXPECT_EQ(model.layouts[1].period, 5ms);
    ASSERT_EQ(model.filters.size(), 2U);
    EXPECT_EQ(model.filters[0].properties[0].value.text, "200");
    EXPECT_EQ(model.filters[0].properties[1].value.text, "7");
    EXPECT_EQ(model.getLayoutOf(model.filters[0]), "sensors");
    EXPECT_EQ(model.getLayoutOf(model.filters[1]), "main");
    EXPECT_EQ(model.filters[1].properties[1].name.text, "ColNames#1");
    EXPECT_EQ(model.filters[1].properties[1].name.place.toText(), "dir/flow.yaml:19:9");
    ASSERT_EQ(model.connections.size(), 2U);
    EXPECT_EQ(model.connections[0].bufferSize, 64U);
    EXPECT_EQ(model.connections[1].to.member, "TimeStampPin");
    EXPECT_EQ(model.connections[1].isLifo, true);
    ASSERT_EQ(model.stop.size(), 3U);
    EXPECT_EQ(model.stop[0].after, 10s);
    EXPECT_EQ(model.stop[1].when.size(), 2U);
    EXPECT_TRUE(model.stop[2].isWhenFinished);
}

TEST(FlowFile, ScriptIsSortedByTimeAndKeepsTheOrderOfEqualTimes) {
    Problems problems;
    const FlowModel model = parseFlow(kWhole, "flow.yaml", lookUp, problems);
    ASSERT_EQ(model.script.size(), 3U);
    EXPECT_EQ(model.script[0].at, 1500ms);
    EXPECT_EQ(model.script[0].target.member, "Record");
    EXPECT_EQ(model.script[1].target.member, "Freq");
    EXPECT_EQ(model.script[2].target.member, "Flush");
    EXPECT_FALSE(model.script[2].value);
}

TEST(FlowFile, WithoutLayoutsHasMain) {
    Problems problems;
    const FlowModel model =
        parseFlow("version: 1\nfilters: [{name: a, class: B}]\n", "f", lookUp, problems);
    EXPECT_EQ(model.getLayoutOf(model.filters[0]), "main");
}

TEST(FlowFile, WithoutALayoutMainAFilterGoesToTheFirst) {
    Problems problems;
    const FlowModel model = parseFlow(
        "version: 1\nlayouts: [x, y]\nfilters: [{name: a, class: B}]\n", "f", lookUp, problems);
    EXPECT_EQ(model.getLayoutOf(model.filters[0]), "x");
}

TEST(FlowFile, TakesConnectionsWithSettingsWithoutQuotationMarks) {
    Problems problems;
    const FlowModel model = parseFlow(
        "version: 1\n"
        "filters: [{name: a, class: A}, {name: b, class: B}]\n"
        "connections:\n"
        "  - a.x -> b.input#1 {buffer: 64, lifo: false}\n"
        "  - a.y -> b.input#2 {lifo: true}  # the newest\n",
        "f", lookUp, problems);
    EXPECT_EQ(problems.toText(), "");
    ASSERT_EQ(model.connections.size(), 2U);
    EXPECT_EQ(model.connections[0].to.member, "input#1");
    EXPECT_EQ(model.connections[0].bufferSize, 64U);
    EXPECT_EQ(model.connections[0].isLifo, false);
    EXPECT_EQ(model.connections[0].to.place.toText(), "f:4:5");
    EXPECT_EQ(model.connections[1].isLifo, true);
}

TEST(FlowFile, TellsOfEachMistakeWithItsPlace) {
    struct Case {
        const char* text;
        const char* problems;
    };
    // A good flow of two filters, for mistakes in other sections.
    const std::string filters =
        "version: 1\nfilters:\n- {name: a, class: A}\n- {name: b, class: B}\n";
    const Case cases[] = {
        {"connections:\n- a.x -> b.y\n- c.x -> b.z\n",
         "f:7:3: there is no filter 'c'; did you mean 'a'?\n"},
        {"connections:\n- a.x -> b.y\n- b.x -> b.y\n",
         "f:7:3: a connection to 'b.y' stands twice (first in line 6)\n"},
        {"connections: [a.x -> b.y {buffer: 1}]\n",
         "f:5:26: end of sequence flow not found; a connection with settings needs quotation "
         "marks\n"},
        {"connections:\n- a.x -> b.y {buffer: 1\n",
         "f:6:3: a connection with settings needs quotation marks\n"},
        {"connections:\n- a.x -> b.y {buffer: 0}  # none\n-   a.x -> b.z {bufer: 1}\n",
         "f:6:3: buffer '0' is not a number from 1 to 1000000\n"
         "f:7:5: unknown setting 'bufer' of a connection; did you mean 'buffer'?\n"},
        {"connections:\n- {from: a.x, too: b.y}\n",
         "f:6:3: a connection needs 'to'\n"
         "f:6:15: unknown key 'too' of a connection; did you mean 'to'?\n"},
        {"connections:\n- {from: a, to: b.y, buffer: 0, lifo: 1}\n",
         "f:6:10: 'a' is not of the form filter.name\n"
         "f:6:30: buffer '0' is not a number from 1 to 1000000\n"
         "f:6:39: '1' is not true or false\n"},
        {"connections: a.x -> b.y\n", "f:5:14: 'connections' must be a list\n"},
        {"connections:\n- [a, b]\n", "f:6:3: a connection must be a single value\n"},
        {"layouts: [x, x]\n", "f:5:14: layout 'x' stands twice (first in line 5)\n"},
        {"layouts: ['a b']\n",
         "f:5:11: 'a b' cannot be the name of a layout; use letters, digits, '_' and '-'\n"},
        {"layouts:\n- {name: x, period: 5}\n",
         "f:6:21: '5' is not a time; write e.g. 200ms, 1.5s or 2min\n"},
        {"script:\n- at: 1s\n", "f:6:3: an action of the script needs either 'set' or 'command'\n"},
        {"script:\n- {at: 1s, set: {a.x: 1}, command: a.y}\n",
         "f:6:3: an action of the script needs either 'set' or 'command'\n"},
        {"script:\n- {set: {a.x: 1}}\n", "f:6:3: an action of the script needs 'at'\n"},
        {"script:\n- {at: soon, set: {a.x: 1}}\n",
         "f:6:8: 'soon' is not a time; write e.g. 200ms, 1.5s or 2min\n"},
        {"script:\n- {at: 1s, set: {x: 1}}\n", "f:6:18: 'x' is not of the form filter.name\n"},
        {"script:\n- {at: 1s, set: a.x}\n",
         "f:6:17: 'set' needs properties and values: {rec.Record: true}\n"},
        {"script:\n- {at: 1s, command: z.x}\n",
         "f:6:21: there is no filter 'z'; did you mean 'a'?\n"},
        {"stop:\n- {for: 1s, when: {a.x: 1}}\n",
         "f:6:3: a stop condition needs one of 'for', 'when' and 'finished'\n"},
        {"stop:\n- {wen: 1s}\n",
         "f:6:4: unknown key 'wen' of a stop condition; did you mean 'when'?\n"},
        {"stop:\n- {when: {}}\n",
         "f:6:10: 'when' needs properties and values: {player.Replay: false}\n"},
        {"stop:\n- {when: {q.x: 1}}\n", "f:6:11: there is no filter 'q'; did you mean 'a'?\n"},
        {"stop:\n- {finished: false}\n",
         "f:6:14: 'finished' can only be true; leave it out otherwise\n"},
        {"plugins: ['']\n", "f:5:11: the path of a plug-in is empty\n"},
        {"plugins: [[x]]\n", "f:5:11: a plug-in must be a single value\n"},
        {"plugin: []\n", "f:5:1: unknown key 'plugin' of a flow file; did you mean 'plugins'?\n"},
    };
    for (const Case& each : cases) {
        Problems problems;
        (void)parseFlow(filters + each.text, "f", lookUp, problems);
        EXPECT_EQ(problems.toText(), each.problems) << each.text;
    }
}

TEST(FlowFile, TellsOfEachMistakeInFilters) {
    struct Case {
        const char* text;
        const char* problems;
    };
    const Case cases[] = {
        {"- {name: a}\n", "f:3:3: a filter needs 'class'\n"},
        {"- {class: A}\n", "f:3:3: a filter needs 'name'\n"},
        {"- {name: a.b, class: A}\n",
         "f:3:10: 'a.b' cannot be the name of a filter; use letters, digits, '_' and '-'\n"},
        {"- {name: '', class: A}\n",
         "f:3:10: '' cannot be the name of a filter; use letters, digits, '_' and '-'\n"},
        {"- a\n", "f:3:3: a filter must be a map with keys of name, class, layout, properties\n"},
        {"- {name: a, class: A}\n- {name: a, class: A}\n",
         "f:4:10: filter 'a' stands twice (first in line 3)\n"},
        {"- {name: a, class: A, layout: mian}\n",
         "f:3:31: there is no layout 'mian'; did you mean 'main'?\n"},
        {"- {name: a, class: A, properties: {x: 1}}\n",
         "f:3:35: properties must be a list with one property an item, since their order counts: "
         "'- Pins Number: 2'\n"},
        {"- {name: a, class: A, properties: [{x: 1, y: 2}]}\n",
         "f:3:36: a property must be one name with one value: '- Binary: true'\n"},
        {"- {name: a, class: A, properties: [x: 1, y: 2, x: 3]}\n",
         "f:3:48: property 'x' is set twice (first in line 3)\n"},
        {"- name: a\n  class: A\n  properties:\n  - File Name:\n",
         "f:6:5: property 'File Name' has no value; write '' for the empty text\n"},
        {"- {name: a, class: A, properties: [x: [1]]}\n",
         "f:3:39: property 'x' must be a single value\n"},
        {"- {name: a, class: '${NOPE}'}\n",
         "f:3:20: variable 'NOPE' is not defined and has no default\n"},
    };
    for (const Case& each : cases) {
        Problems problems;
        (void)parseFlow(std::string("version: 1\nfilters:\n") + each.text, "f", lookUp, problems);
        EXPECT_EQ(problems.toText(), each.problems) << each.text;
    }
}

TEST(FlowFile, TellsOfEachMistakeAtTheTop) {
    const std::pair<const char*, const char*> cases[] = {
        {"filters: [{name: a, class: A}]\n", "f:1:1: a flow file needs 'version'\n"},
        {"version: 1\nfilters: []\n", "f:2:10: a flow needs at least one filter\n"},
        {"version: 1\n", "f:1:1: a flow file needs 'filters'\n"},
        {"version: 1\nconnections: [a.b -> c.d]\nstop: [when: {a.b: 1}]\n",
         "f:1:1: a flow file needs 'filters'\n"},
        {"version: 2\nfilters: [{name: a, class: A}]\n",
         "f:1:10: version '2' is not known; this program reads version 1\n"},
        {"- a\n",
         "f:1:1: a flow file must be a map with keys of version, plugins, layouts, filters, "
         "connections, script, stop\n"},
        {"", "f:1:1: the file is empty\n"},
    };
    for (const auto& [text, expected] : cases) {
        Problems problems;
        (void)parseFlow(text, "f", lookUp, problems);
        EXPECT_EQ(problems.toText(), expected) << text;
    }
}

TEST(FlowFile, TellsOfAllMistakesAtOnce) {
    Problems problems;
    (void)parseFlow("version: 3\nfiltres: []\nfilters:\n- {name: a}\nstop:\n- {for: 1}\n", "f",
                    lookUp, problems);
    EXPECT_EQ(problems.getList().size(), 4U) << problems.toText();
}

TEST(FlowFile, ThatCannotBeReadIsTold) {
    Problems problems;
    (void)readFlowFile("no/such/flow.yaml", problems);
    EXPECT_EQ(problems.toText(), "no/such/flow.yaml: cannot be read: No such file or directory\n");
    problems.clear();
    (void)readFlowFile(testing::TempDir(), problems);
    EXPECT_THAT(problems.toText(), testing::HasSubstr("cannot be read: Is a directory"));
}

TEST(FlowFile, ThatIsTooLargeIsTold) {
    const std::string path = testing::TempDir() + "quoril_large_flow.yaml";
    std::ofstream(path) << std::string((1U << 20U) + 1, '#');
    Problems problems;
    (void)readFlowFile(path, problems);
    EXPECT_EQ(problems.toText(), path + ": is larger than 1 MiB, too large for a flow file\n");
    std::remove(path.c_str());
}

TEST(FlowFile, LayoutNamedByAnUnknownVariableIsTold) {
    Problems problems;
    (void)parseFlow("version: 1\nlayouts: [\"${NONE}\"]\nfilters: [{name: a, class: b}]\n", "f",
                    lookUp, problems);
    EXPECT_EQ(problems.toText(), "f:2:11: variable 'NONE' is not defined and has no default\n");
}

/// Lines with the number of each in place of '#'.
std::string repeat(int count, const std::string& line) {
    std::string text;
    for (int i = 0; i < count; ++i)
        for (const char c : line)
            text += c == '#' ? std::to_string(i) : std::string(1, c);
    return text;
}

TEST(FlowFile, ThousandsOfUnknownNamesAreToldInTime) {
    const std::string filler(60, 'x');
    const std::string text =
        "version: 1\nfilters:\n" + repeat(3000, "- {name: f#" + filler + ", class: c}\n") +
        "connections:\n" + repeat(4000, "- g#" + filler + ".a -> h#" + filler + ".b\n");
    ASSERT_LT(text.size(), std::size_t{1} << 20U);
    Problems problems;
    const std::clock_t begin = std::clock();
    (void)parseFlow(text, "f", lookUp, problems);
    // Half a second in a plain build; comparing every name with every other takes minutes.
    EXPECT_LT(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC, 20.0);
    EXPECT_EQ(problems.getList().size(), 8000U);
    EXPECT_THAT(problems.toText(), testing::HasSubstr("there is no filter 'g0" + filler +
                                                      "'; did you mean 'f0" + filler + "'?"));
}

TEST(FlowFile, LongNamesAreNotToldThousandsOfTimes) {
    const std::string text = "version: 1\nfilters:\n" +
                             repeat(12, "- {name: f#" + std::string(60000, 'x') + ", class: c}\n") +
                             "connections:\n" + repeat(9000, "- a.b -> c.d\n");
    Problems problems;
    (void)parseFlow(text, "f", lookUp, problems);
    std::size_t told = 0;
    for (const Problem& problem : problems.getList())
        told += problem.text.size();
    EXPECT_EQ(problems.getList().size(), 18000U);
    EXPECT_LT(told, std::size_t{32} << 20U);
}

}  // namespace
}  // namespace Quoril::Runner
