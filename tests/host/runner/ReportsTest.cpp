#include "host/runner/FilterReport.hpp"
#include "host/runner/PluginFinder.hpp"
#include "host/runner/PluginReport.hpp"
#include "host/runner/Progress.hpp"
#include "host/runner/Summary.hpp"
#include "tests/host/runner/KnobsFilter.hpp"

#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace Quoril::Runner {
namespace {

using namespace std::chrono_literals;

Core::PinReport makeReport(const std::string& pin, std::uint64_t pushed, std::uint64_t overwritten,
                           unsigned bufferSize) {
    return {
        "rec",     pin,
        "imu.acc", {.pushed = pushed, .taken = pushed - overwritten, .overwritten = overwritten},
        0,         bufferSize};
}

TEST(Summary, CountsLossesOfBuffersThatKeepMoreThanTheNewest) {
    EXPECT_EQ(countLost({}), 0U);
    EXPECT_EQ(countLost({makeReport("calibInput#1", 9, 8, 1)}), 0U);
    EXPECT_EQ(countLost({makeReport("a", 9, 3, 2), makeReport("b", 9, 4, 256)}), 7U);
}

TEST(Summary, IsATable) {
    EXPECT_EQ(
        makeSummary({makeReport("input#1", 600, 0, 256), makeReport("calibInput#1", 2, 1, 1)}),
        "connection                       pushed       taken  overwritten  waiting\n"
        "imu.acc -> rec.input#1              600         600            0        0\n"
        "imu.acc -> rec.calibInput#1           2           1            1        0\n");
    EXPECT_EQ(makeSummary({}), "no pin is connected\n");
}

TEST(Summary, TellsWhatWasClearedIfAnythingWas) {
    Core::PinReport changed = makeReport("b", 9, 0, 256);
    changed.counters.taken = 4;
    changed.counters.cleared = 5;
    EXPECT_EQ(makeSummary({makeReport("a", 9, 0, 256), changed}),
              "connection            pushed       taken  overwritten  waiting  cleared\n"
              "imu.acc -> rec.a           9           9            0        0        0\n"
              "imu.acc -> rec.b           9           4            0        0        5\n");
    EXPECT_EQ(countLost({changed}), 5U);
}

TEST(Progress, TellsTimeRowsAndRate) {
    Progress progress;
    EXPECT_EQ(progress.makeLine(0ns, {}), "0.0 s  0 rows  0 rows/s");
    EXPECT_EQ(progress.makeLine(500ms, {makeReport("a", 100, 0, 9), makeReport("b", 40, 0, 9)}),
              "0.5 s  100 rows  200 rows/s");
    EXPECT_EQ(progress.makeLine(1500ms, {makeReport("a", 400, 3, 9)}),
              "1.5 s  400 rows  300 rows/s  3 lost");
}

TEST(PluginFinder, LooksForBareNamesBesideTheProgramAlone) {
    EXPECT_THAT(listCandidates({{"Plugin-1.0", {}}, "/flows/"}, "/usr/bin/"),
                testing::ElementsAre("/usr/bin/Plugin-1.0", "/usr/bin/Plugin-1.0.so"));
}

TEST(PluginFinder, LooksForPathsInTheBaseFolder) {
    EXPECT_THAT(listCandidates({{"./Plugin-1.0", {}}, "/flows/"}, "/usr/bin/"),
                testing::ElementsAre("/flows/./Plugin-1.0", "/flows/./Plugin-1.0.so"));
    EXPECT_THAT(listCandidates({{"sub/P.so", {}}, "/flows/"}, "/usr/bin/"),
                testing::ElementsAre("/flows/sub/P.so"));
    EXPECT_THAT(listCandidates({{"/abs/P.so", {}}, "/flows/"}, "/usr/bin/"),
                testing::ElementsAre("/abs/P.so"));
}

TEST(PluginFinder, RelativePathsOfTheCommandLineBeginInTheCurrentFolder) {
    const std::string here = std::filesystem::current_path().string();
    EXPECT_THAT(listCandidates({{"sub/P.so", {}}, ""}, "/usr/bin/"),
                testing::ElementsAre(here + "/sub/P.so"));
}

TEST(FilterReport, HoldsPinsAndPropertiesInOrder) {
    Testing::installKnobs();
    Testing::KnobsFilter filter("k");
    filter.pinsNumber.set(1);
    const auto json = nlohmann::json::parse(toJsonText(makeFilterReport(filter)));
    EXPECT_EQ(json["class"], "FilterKnobs");
    EXPECT_EQ(json["plugin"], "Knobs");
    EXPECT_EQ(json["inputs"], nlohmann::json::parse(
                                  R"([{"name": "calibInput#1", "buffer": 1, "lifo": false},
                                      {"name": "input#1", "buffer": 1, "lifo": false}])"));
    EXPECT_EQ(json["outputs"], nlohmann::json::parse(R"([{"name": "out"}])"));
    EXPECT_EQ(json["properties"], nlohmann::json::parse(R"([
        {"name": "Record", "kind": "boolean", "default": "false", "writable": true,
         "saved": false},
        {"name": "Freq", "kind": "number", "default": "200", "writable": true, "saved": true},
        {"name": "Pins Number", "kind": "integer range", "default": "1",
         "range": {"minimum": 0, "maximum": 3, "step": 1}, "writable": true, "saved": true},
        {"name": "Mode", "kind": "choice", "default": "Slow", "entries": ["Slow", "Fast"],
         "writable": true, "saved": true},
        {"name": "File Name", "kind": "file name", "default": "", "writable": true,
         "saved": true},
        {"name": "Read File", "kind": "file name", "default": "", "writable": true,
         "saved": true},
        {"name": "Refusing", "kind": "text", "default": "", "writable": true, "saved": true},
        {"name": "Save", "kind": "command", "writable": true, "saved": false},
        {"name": "Shown", "kind": "integer", "default": "2",
         "range": {"minimum": -2147483648, "maximum": 2147483647, "step": 0},
         "writable": false, "saved": true}
    ])"));
}

TEST(FilterReport, IsReadable) {
    Testing::installKnobs();
    const Testing::KnobsFilter filter("k");
    EXPECT_EQ(toText(makeFilterReport(filter)),
              "FilterKnobs (plug-in Knobs)\n"
              "\ninput pins:\n  calibInput#1\n"
              "\noutput pins:\n  out\n"
              "\nproperties:\n"
              "  Record       boolean           false  [switch]\n"
              "  Freq         number            200\n"
              "  Pins Number  integer range     0  [0 to 3, step 1]\n"
              "  Mode         choice            Slow  [Slow, Fast]\n"
              "  File Name    file name         ''\n"
              "  Read File    file name         ''\n"
              "  Refusing     text              ''\n"
              "  Save         command\n"
              "  Shown        integer           2  [read-only]\n");
}

TEST(PluginReport, HoldsMetaDataAndClasses) {
    const std::vector<PluginReport> reports = {
        {"P", {"2.5.0", "0.10.0", "The P", "does it", "win32", "now"}, {"FilterA", "FilterB"}},
        {"Q", {}, {}}};
    EXPECT_EQ(toText(reports),
              "P\n  name          The P\n  version       2.5.0\n  description   does it\n"
              "  host version  0.10.0\n  platform      win32\n  build date    now\n"
              "  filter        FilterA\n  filter        FilterB\n\nQ\n");
    const auto json = nlohmann::json::parse(toJsonText(reports));
    EXPECT_EQ(json["plugins"][0],
              nlohmann::json::parse(R"({"plugin": "P", "name": "The P", "version": "2.5.0",
                  "description": "does it", "hostVersion": "0.10.0", "platform": "win32",
                  "buildDate": "now", "filters": ["FilterA", "FilterB"]})"));
}

}  // namespace
}  // namespace Quoril::Runner
