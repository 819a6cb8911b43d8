#include "tests/stress/RecordingEdit.hpp"

#include "framework/AbstractInputPin.hpp"
#include "framework/AbstractOutputPin.hpp"
#include "framework/PropertyBag.hpp"
#include "framework/Synchronizer.hpp"
#include "tests/stress/Dice.hpp"
#include "tests/stress/FilterLook.hpp"
#include "tests/stress/Graph.hpp"

#include <algorithm>
#include <string>
#include <vector>

namespace Stress {

using Quoril::Core::AbstractInputPin;
using Quoril::Core::AbstractOutputPin;
using Quoril::Core::Filter;
using Quoril::Core::Synchronizer;

namespace {

/// Recordings are to live for some hundreds of rows.
constexpr unsigned kStopPercent = 10;

void set(Filter& filter, const std::string& property, const std::string& text) {
    filter.getPropertyBag()->find(property)->deSerialize(text);
}

/// The pins of all filters whose samples have that size; any size above 0 for 0.
std::vector<AbstractOutputPin*> outputsOfSize(Graph& graph, std::size_t size) {
    std::vector<AbstractOutputPin*> found;
    for (Filter* filter : graph.getFlow().getFilters()) {
        const Synchronizer::DisablerLocker lock(filter->getSynchronizer(), nullptr);
        for (AbstractOutputPin* output : filter->getOutputPins()) {
            const std::size_t present = sampleSizeOf(*output);
            if (present > 0 && (size == 0 || present == size)) found.push_back(output);
        }
    }
    return found;
}

void reconnect(Graph& graph, AbstractOutputPin& output, AbstractInputPin& input) {
    if (AbstractOutputPin* writer = input.getOutputPin()) writer->detach(input, false);
    graph.connect(output, input);
}

std::string namesFor(std::size_t pin, std::size_t count) {
    std::string names;
    for (std::size_t i = 0; i < count; ++i)
        names += "P" + std::to_string(pin) + "_" + std::to_string(i) + ";";
    return names;
}

void setUpPin(Graph& graph, Filter& recorder, std::size_t pin, bool isBinary, Dice& dice) {
    const std::vector<AbstractOutputPin*> outputs = outputsOfSize(graph, 0);
    AbstractOutputPin& output = *dice.pick(outputs);
    const std::string number = std::to_string(pin);
    set(recorder, "ColNames#" + number, namesFor(pin, sampleSizeOf(output)));
    // DOUBLE (7) mostly; the first two are no types for text.
    const bool isDouble = dice.chance(isBinary ? 40 : 80);
    set(recorder, "ColTypes#" + number, isDouble ? "7" : std::to_string(2 + dice.below(13)));
    reconnect(graph, output, *recorder.findInputPin("input#" + number));
}

void setUpCalibrations(Filter& recorder, Dice& dice) {
    const std::size_t count = dice.below(3);
    set(recorder, "Calib Pins Number", std::to_string(count));
    for (std::size_t i = 1; i <= count; ++i)
        set(recorder, "CalibColNames#" + std::to_string(i), "C" + std::to_string(i));
}

void setUpFree(Graph& graph, Filter& recorder, Dice& dice) {
    const bool isBinary = dice.chance(70);
    set(recorder, "Binary", isBinary ? "1" : "0");
    set(recorder, "Save Timestamp", dice.chance(10) ? "1" : "0");
    if (textOf(recorder, "Save Timestamp") == "1") set(recorder, "TimeStampColName", "TIME");
    setUpCalibrations(recorder, dice);
    const std::size_t count = 1 + dice.below(3);
    set(recorder, "Pins Number", std::to_string(count));
    for (std::size_t pin = 1; pin <= count; ++pin)
        setUpPin(graph, recorder, pin, isBinary, dice);
}

void setUpUnit(Graph& graph, Filter& recorder, Dice& dice) {
    set(recorder, "Save Gyro", dice.chance(50) ? "1" : "0");
    for (const char* name : {"3a", "3m", "3g", "Button", "FrameNumber"}) {
        AbstractInputPin* input = recorder.findInputPin(name);
        if (input == nullptr || (input->getOutputPin() != nullptr && dice.chance(50))) continue;
        const std::vector<AbstractOutputPin*> outputs =
            outputsOfSize(graph, std::string(name) == "Button" ? 1 : 3);
        if (!outputs.empty()) reconnect(graph, *dice.pick(outputs), *input);
    }
}

}  // namespace

void toggleRecording(Graph& graph, Filter& recorder, Dice& dice) {
    if (recorder.getPropertyBag()->find("Record") == nullptr) return;
    const Synchronizer::DisablerLocker lock(recorder.getSynchronizer(), nullptr);
    if (textOf(recorder, "Record") == "1") {
        if (dice.chance(kStopPercent)) set(recorder, "Record", "0");
        return;
    }
    set(recorder, "File Name", graph.getSurroundings().newFile());
    if (recorder.getPropertyBag()->find("Pins Number") != nullptr)
        setUpFree(graph, recorder, dice);
    else
        setUpUnit(graph, recorder, dice);
    set(recorder, "Record", "1");
    ++graph.getSurroundings().startedRecordings;
}

}  // namespace Stress
