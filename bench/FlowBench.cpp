// Whole flows: the simulated unit through the record filter into a file, in one layout, at the
// maximum pace. Rows of 11 columns: counter, 9 axes, button.

#include "bench/FlowParts.hpp"
#include "bench/ScratchFolder.hpp"
#include "framework/AbstractInputPin.hpp"
#include "framework/Filter.hpp"
#include "host/Flow.hpp"
#include "host/LayoutManager.hpp"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <Poco/Exception.h>
#include <benchmark/benchmark.h>

namespace Bench {
namespace {

using namespace Quoril::Core;

/// Bytes of memory that the process holds now; 0 where the system does not tell.
double residentBytes() {
    std::ifstream file("/proc/self/statm");
    double pages = 0.0;
    double resident = 0.0;
    file >> pages >> resident;
    constexpr double kPageBytes = 4096.0;
    return resident * kPageBytes;
}

/// Records so many rows; returns by how many bytes the process grew from a tenth of them on.
double recordSimulated(std::int64_t rows) {
    loadFilters();
    const std::string path = ScratchFolder::instance().file("flow.bin");
    Flow flow;
    LayoutManager& layout = flow.addLayout("main");
    Filter& imu = flow.addFilter("FilterImuSimulator", "imu", layout);
    Filter& recorder = flow.addFilter("FilterRecordSensorFile", "recorder", layout);
    apply(imu, {{"Raw Counts", "1"}, {"Count", std::to_string(rows)}});
    apply(recorder, {{"Binary", "1"},
                     {"File Name", path},
                     {"Pins Number", "5"},
                     {"ColNames#1", "COUNT LOSS FREQ"},
                     {"ColTypes#1", "11"},
                     {"ColNames#2", "ACCX ACCY ACCZ"},
                     {"ColTypes#2", "12"},
                     {"ColNames#3", "GYRX GYRY GYRZ"},
                     {"ColTypes#3", "12"},
                     {"ColNames#4", "MAGX MAGY MAGZ"},
                     {"ColTypes#4", "12"},
                     {"ColNames#5", "BUTTON"},
                     {"ColTypes#5", "9"}});
    connect(flow, imu, recorder,
            {{"frame", "input#1"},
             {"acc", "input#2"},
             {"gyr", "input#3"},
             {"mag", "input#4"},
             {"button", "input#5"}});
    apply(recorder, {{"Record", "1"}});
    flow.setPacing({.mode = Pacing::Mode::kMaximum});
    flow.start();
    double early = 0.0;
    const auto look = [&] {
        const auto taken =
            static_cast<std::int64_t>(recorder.findInputPin("input#1")->getCounters().taken);
        if (early == 0.0 && taken > rows / 10) early = residentBytes();
    };
    waitUntil([&] { return flow.isFinished(); }, look);
    const double late = residentBytes();
    flow.stop();
    apply(recorder, {{"Record", "0"}});
    requireNothingLost(flow);
    return late - early;
}

void simulatorToFile(benchmark::State& state) {
    const std::int64_t rows = state.range(0);
    double grown = 0.0;
    try {
        for (auto _ : state)
            grown = recordSimulated(rows);
    } catch (const Poco::Exception& error) {
        state.SkipWithError(error.displayText().c_str());
        return;
    }
    state.SetItemsProcessed(state.iterations() * rows);
    state.counters["grown_KiB"] = grown / 1024.0;
}
BENCHMARK(simulatorToFile)
    ->Name("flow/simulator_to_file")
    ->Arg(1'000'000)
    ->UseRealTime()
    ->Iterations(1);

/// The same with ten million rows, to see that memory does not grow with a recording's length.
/// Only with QUORIL_BENCH_FULL set.
void longRecording(benchmark::State& state) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in this program changes the environment
    if (std::getenv("QUORIL_BENCH_FULL") == nullptr) {
        for (auto _ : state) {
        }
        state.SetItemsProcessed(1);
        return;
    }
    simulatorToFile(state);
}
BENCHMARK(longRecording)
    ->Name("flow/ten_million_rows")
    ->Arg(10'000'000)
    ->UseRealTime()
    ->Iterations(1);

}  // namespace
}  // namespace Bench
