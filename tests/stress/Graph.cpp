#include "tests/stress/Graph.hpp"

#include "framework/AbstractOutputPin.hpp"
#include "framework/Filter.hpp"
#include "framework/FlowManager.hpp"
#include "framework/PluginManager.hpp"
#include "host/EditGate.hpp"
#include "host/LayoutManager.hpp"
#include "tests/stress/Failure.hpp"
#include "tests/stress/FilterLook.hpp"
#include "tests/stress/Platform.hpp"

#include <algorithm>
#include <optional>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace Stress {

using Quoril::Core::AbstractInputPin;
using Quoril::Core::AbstractOutputPin;
using Quoril::Core::EditGate;
using Quoril::Core::Filter;
using Quoril::Core::LayoutManager;
using Quoril::Core::Synchronizer;

namespace {

struct Place {
    const char* className;
    const char* name;
    std::size_t layout;
};

/// Recorders of units have names that begin with "unit".
constexpr std::array kPlaces{
    Place{NumberSource::kClassName, "numbers", 0},
    Place{"FilterImuSimulator", "imu", 0},
    Place{"FilterMatrixSource", "matrix", 0},
    Place{"FilterRecordSensorFile", "recorder", 0},
    Place{"FilterCalibSensorFileWriter", "calibWriter", 0},
    Place{NumberSource::kClassName, "otherNumbers", 1},
    Place{"FilterImuSimulator", "otherImu", 1},
    Place{"FilterRecordKivra2Format", "unitRecorder", 1},
    Place{"FilterKivra2CalibWriter", "unitCalibWriter", 1},
    Place{"FilterRecordSensorFile", "copier", 2},
    Place{"FilterRecordKivra2Format", "unitCopier", 2},
    Place{"FilterReplaySensorFile", "player", 2},
    Place{"FilterReplayKivra2Format", "unitPlayer", 2},
    Place{"FilterCalibSensorFileReader", "calibReader", 2},
    Place{"FilterKivra2CalibReader", "unitCalibReader", 2},
    Place{"FilterCsvSource", "table", 2},
    Place{"FilterProbe", "probe", 2},
    Place{Passer::kClassName, "passer", 2},
};

constexpr std::array kTriplePins{"3a", "3m", "3g"};

bool takesTriples(const AbstractInputPin& input) {
    return std::find(kTriplePins.begin(), kTriplePins.end(), input.getName()) != kTriplePins.end();
}

/// What the processing calls of these two let out is told to users; the others let out nothing.
bool mayThrow(const std::string& filter) {
    return filter == "probe" || filter == "table";
}

void checkPin(const Filter& filter, const AbstractInputPin& pin) {
    const auto counters = pin.getCounters();
    const auto waiting = pin.getWaitingCount();
    const auto known = counters.taken + counters.overwritten + counters.cleared + waiting;
    if (counters.pushed == known) return;
    fail(
        fmt::format("samples got lost at '{}.{}': {} pushed, {} taken, {} overwritten, "
                    "{} cleared, {} waiting",
                    filter.getName(), pin.getName(), counters.pushed, counters.taken,
                    counters.overwritten, counters.cleared, waiting));
}

/// @return whether there was one
bool takeOneAway(AbstractInputPin& pin) {
    auto* const typed = dynamic_cast<MatrixInput*>(&pin);
    const MatrixInput::Sample* sample = nullptr;
    return typed != nullptr && !typed->getIsBlocking() && typed->getStrategy().pop(sample);
}

}  // namespace

std::string Surroundings::newFile() {
    return folder + "/new-" + std::to_string(nextFile++);
}

const std::vector<std::string>& Graph::lastingNames() {
    static const std::vector<std::string> kNames{"numbers",  "imu",   "matrix", "otherNumbers",
                                                 "otherImu", "table", "probe",  "passer"};
    return kNames;
}

Graph::Graph(Surroundings& surroundings) : surroundings_(surroundings) {
    flow_.setErrorHandler([](const std::string& filter, const std::string& text) {
        if (!mayThrow(filter)) fail("a call of '" + filter + "' let out: " + text);
    });
    for (std::size_t i = 0; i < kLayoutNames.size(); ++i) {
        const std::string name = kLayoutNames[i];
        auto& pulse = dynamic_cast<Pulse&>(
            flow_.addFilter(Pulse::kClassName, "pulse " + name, flow_.addLayout(name)));
        pulse.setBeat(*surroundings_.layoutBeats[i]);
    }
    const EditGate gate;
    restore();
}

Graph::~Graph() {
    flow_.stop(/*drain=*/false);
    const EditGate gate;
    for (Filter* filter : flow_.getFilters())
        remove(*filter);
}

void Graph::restore() {
    auto& plugins = Quoril::Core::FlowManager::instance().getPluginManager();
    for (const Place& place : kPlaces)
        if (flow_.findFilter(place.name) == nullptr &&
            plugins.findFilterFactory(place.className) != nullptr)
            add(place.className, place.name, *flow_.findLayout(kLayoutNames[place.layout]));
}

void Graph::add(const std::string& className, const std::string& name, LayoutManager& layout) {
    Filter& filter = flow_.addFilter(className, name, layout);
    surroundings_.ledger.watch(filter);
    if (name == "probe") filter.getPropertyBag()->find("File Name")->deSerialize(nullFile());
    if (filter.getPropertyBag()->find("Rate") != nullptr)
        filter.getPropertyBag()->find("Rate")->deSerialize("8000");
}

void Graph::remove(Filter& filter) {
    std::optional<ClosedRecording> closing = surroundings_.ledger.release(filter);
    flow_.removeFilter(filter);
    if (closing) surroundings_.ledger.close(*closing);
}

void Graph::whileModuleGoes(const std::function<void()>& operation) {
    std::vector<ClosedRecording> closing;
    for (Filter* filter : flow_.getFilters())
        if (auto recording = surroundings_.ledger.release(*filter))
            closing.push_back(std::move(*recording));
    operation();
    for (ClosedRecording& recording : closing)
        surroundings_.ledger.close(std::move(recording));
}

void Graph::connect(AbstractOutputPin& output, AbstractInputPin& input) {
    const auto* reader = dynamic_cast<const Filter*>(input.getManager());
    if (reader == nullptr || output.getManager() == input.getManager()) return;
    const std::size_t size = sampleSizeOf(output);
    if (takesTriples(input) && size != 3) return;
    surroundings_.ledger.noteConnection(*reader, input.getName(), size);
    flow_.connect(output, input);
}

void Graph::checkBalance(bool takesOneAway) {
    const EditGate gate;
    std::array<std::optional<Synchronizer::DisablerLocker>, kLayoutNames.size()> locks;
    for (std::size_t i = 0; i < kLayoutNames.size(); ++i)
        locks[i].emplace(&flow_.findLayout(kLayoutNames[i])->getSynchronizer(), nullptr);
    for (const Filter* filter : flow_.getFilters())
        for (AbstractInputPin* pin : filter->getInputPins()) {
            if (takesOneAway && takeOneAway(*pin)) takesOneAway = false;
            checkPin(*filter, *pin);
        }
    // Lockers end in reverse order.
    for (auto lock = locks.rbegin(); lock != locks.rend(); ++lock)
        lock->reset();
}

}  // namespace Stress
