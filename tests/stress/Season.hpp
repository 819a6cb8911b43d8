#pragma once

#include "tests/stress/Dice.hpp"
#include "tests/stress/Graph.hpp"
#include "tests/stress/Options.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace Quoril::Core {
class PluginLoader;
}

namespace Stress {

class Watchdog;

/// What was done, to show that something was.
struct Totals {
    std::uint64_t edits = 0;
    std::uint64_t refusedEdits = 0;
    std::uint64_t sentRows = 0;  ///< by the sources of numbers
    std::uint64_t checkedRecordings = 0;
    std::uint64_t exactRecordings = 0;
    std::uint64_t recordedRows = 0;
    std::uint64_t moduleLoads = 0;
    std::uint64_t stops = 0;
    std::uint64_t balances = 0;
    std::size_t largestHeap = 0;
};

/// What all seasons share.
struct Stage {
    const Options& options;
    Surroundings& surroundings;
    Quoril::Core::PluginLoader& loader;
    Watchdog& watchdog;
    Beat& conductor;
    std::vector<Beat*> editors;
    Dice dice;
    Totals totals;
};

/// One flow from its making to its end: it runs, is edited, stopped and started, its module comes
/// and goes, and what it recorded is looked at. The module is loaded for the season alone.
void runSeason(Stage& stage, std::chrono::steady_clock::duration length);

}  // namespace Stress
