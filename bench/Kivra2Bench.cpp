// Whole flows of a Kivra2 unit with gyroscope, rows of 11 columns, in one layout at the maximum
// pace: the simulated unit through its recorder into a file, and a file through its player, all
// outputs connected to a recorder again.

#include "bench/FlowParts.hpp"
#include "bench/ScratchFolder.hpp"
#include "framework/AbstractOutputPin.hpp"
#include "framework/PropertyBag.hpp"
#include "framework/ValueProperty.hpp"
#include "host/Flow.hpp"
#include "host/LayoutManager.hpp"

#include <cstdint>
#include <functional>
#include <string>

#include <Poco/Exception.h>
#include <benchmark/benchmark.h>

namespace Bench {
namespace {

using namespace Quoril::Core;

std::string unitFile() {
    return ScratchFolder::instance().file("unit.bin");
}

Filter& addRecorder(Flow& flow, LayoutManager& layout, const std::string& file) {
    Filter& recorder = flow.addFilter("FilterRecordKivra2Format", "recorder", layout);
    apply(recorder, {{"Save Gyro", "1"}, {"File Name", file}});
    return recorder;
}

void runToTheEnd(Flow& flow, Filter& recorder, const std::function<bool()>& isFinished) {
    apply(recorder, {{"Record", "1"}});
    flow.start();
    waitUntil(isFinished);
    flow.stop();
    apply(recorder, {{"Record", "0"}});
    requireNothingLost(flow);
}

void recordUnit(std::int64_t rows) {
    loadFilters();
    Flow flow;
    flow.setPacing({.mode = Pacing::Mode::kMaximum});
    LayoutManager& layout = flow.addLayout("main");
    Filter& imu = flow.addFilter("FilterImuSimulator", "imu", layout);
    apply(imu, {{"Raw Counts", "1"}, {"Count", std::to_string(rows)}});
    Filter& recorder = addRecorder(flow, layout, unitFile());
    connect(flow, imu, recorder,
            {{"acc", "3a"},
             {"accGain", "3aGain"},
             {"accOffset", "3aOff"},
             {"mag", "3m"},
             {"magGain", "3mGain"},
             {"magOffset", "3mOff"},
             {"gyr", "3g"},
             {"gyrGain", "3gGain"},
             {"gyrOffset", "3gOff"},
             {"frame", "FrameNumber"},
             {"button", "Button"}});
    runToTheEnd(flow, recorder, [&] { return flow.isFinished(); });
}

void replayUnit() {
    Flow flow;
    flow.setPacing({.mode = Pacing::Mode::kMaximum});
    LayoutManager& layout = flow.addLayout("main");
    Filter& player = flow.addFilter("FilterReplayKivra2Format", "player", layout);
    apply(player, {{"Load File", unitFile()}, {"Replay", "1"}});
    Filter& recorder = addRecorder(flow, layout, ScratchFolder::instance().file("again.bin"));
    for (const AbstractOutputPin* pin : player.getOutputPins())
        connect(flow, player, recorder, {{pin->getName(), pin->getName()}});
    const auto& replay =
        dynamic_cast<const ValueProperty<bool>&>(*player.getPropertyBag()->find("Replay"));
    runToTheEnd(flow, recorder, [&] { return !replay.get(); });
}

template <class Work>
void measure(benchmark::State& state, const Work& work) {
    try {
        for (auto _ : state)
            work();
    } catch (const Poco::Exception& error) {
        state.SkipWithError(error.displayText().c_str());
        return;
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void unitToFile(benchmark::State& state) {
    measure(state, [&] { recordUnit(state.range(0)); });
}
BENCHMARK(unitToFile)->Name("kivra2/record")->Arg(1'000'000)->UseRealTime()->Iterations(1);

void fileToPins(benchmark::State& state) {
    recordUnit(state.range(0));
    measure(state, replayUnit);
}
BENCHMARK(fileToPins)->Name("kivra2/replay")->Arg(1'000'000)->UseRealTime()->Iterations(1);

}  // namespace
}  // namespace Bench
