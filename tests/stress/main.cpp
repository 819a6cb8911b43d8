// Edits a running flow of all filters from four threads at random, for as long as told, and looks
// whether anything goes wrong: see docs/reliability.md.
#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"
#include "host/PluginLoader.hpp"
#include "host/filters/BuiltinPlugin.hpp"
#include "tests/stress/Failure.hpp"
#include "tests/stress/MemoryWatch.hpp"
#include "tests/stress/Platform.hpp"
#include "tests/stress/Season.hpp"
#include "tests/stress/Watchdog.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <streambuf>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace Stress {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kEditorCount = 4;
constexpr auto kShortestSeason = std::chrono::seconds(1);
constexpr auto kLongestSeason = std::chrono::seconds(10);
constexpr int kSeasonCount = 30;

/// Takes everything and keeps nothing: recorders tell there of the rows that they left out.
class NoOutput final : public std::streambuf {
 protected:
    int_type overflow(int_type character) override { return traits_type::not_eof(character); }
    std::streamsize xsputn(const char* /*text*/, std::streamsize size) override { return size; }
};

void silenceStandardStreams() {
    // Filters may write until the process ends.
    static NoOutput nowhere;
    std::cerr.rdbuf(&nowhere);
    silenceStandardOutput();
}

void removeNewFiles(const std::string& folder) {
    for (const auto& file : std::filesystem::directory_iterator(folder))
        if (file.path().filename().string().rfind("new-", 0) == 0)
            std::filesystem::remove(file.path());
}

void report(const Totals& totals, std::size_t seasonCount) {
    say(
        fmt::format("{} seasons: {} edits, {} of them refused; {} rows sent by two sources; "
                    "{} recordings with {} rows read, {} of them counted to the row; "
                    "{} balances; {} restarts; the module loaded {} times",
                    seasonCount, totals.edits, totals.refusedEdits, totals.sentRows,
                    totals.checkedRecordings, totals.recordedRows, totals.exactRecordings,
                    totals.balances, totals.stops, totals.moduleLoads));
}

/// On a machine that is busy with other things the time may pass without much being done.
bool isWorthATest(const Totals& totals) {
    return totals.exactRecordings > 0 && totals.recordedRows > 0 && totals.stops > 0;
}

void leak() {
    static std::vector<std::vector<char>> kept;
    kept.emplace_back(std::size_t{1} << 18U, 'x');
}

void run(const Options& options) {
    const Support::TemporaryFolder folder;
    if (options.sabotage != Sabotage::kNone) removeAtFailure(folder.path());
    Watchdog watchdog(options.patience);
    Surroundings surroundings(folder.path());
    for (std::size_t i = 0; i < kLayoutNames.size(); ++i)
        surroundings.layoutBeats[i] = &watchdog.addBeat(std::string("layout ") + kLayoutNames[i]);
    Quoril::Core::PluginLoader loader;
    Stage stage{options, surroundings,       loader, watchdog, watchdog.addBeat("conductor"),
                {},      Dice(options.seed), {}};
    for (int i = 0; i < kEditorCount; ++i)
        stage.editors.push_back(&watchdog.addBeat("editor " + std::to_string(i)));
    stage.conductor.setIsDue(true);

    const auto end = Clock::now() + options.duration;
    const auto length = std::clamp<Clock::duration>(
        Clock::duration(options.duration) / kSeasonCount, kShortestSeason, kLongestSeason);
    MemoryWatch memory;
    std::size_t seasonCount = 0;
    for (; Clock::now() < end || !isWorthATest(stage.totals); ++seasonCount) {
        runSeason(stage, length);
        removeNewFiles(folder.path());
        if (options.sabotage == Sabotage::kLeak) leak();
        memory.look();
    }
    stage.conductor.setIsDue(false);
    report(stage.totals, seasonCount);
    memory.report(stage.totals.largestHeap);
}

}  // namespace

}  // namespace Stress

int main(int argc, char** argv) {
    try {
        const Stress::Options options = Stress::parseOptions({argv + 1, argv + argc});
        Stress::say(fmt::format("seed {}", options.seed));
        Stress::silenceStandardStreams();
        Stress::prepareStackDump();
        Stress::nameThisThread("conductor");
        Quoril::Core::installBuiltinPlugin();
        static Stress::StressPlugin plugin;
        Quoril::Core::FlowManager::instance().getPluginManager().installPlugin(plugin);
        Stress::run(options);
        return EXIT_SUCCESS;
    } catch (const Poco::Exception& error) {
        Stress::fail(error.displayText());
    } catch (const std::exception& error) {
        Stress::fail(error.what());
    }
}
