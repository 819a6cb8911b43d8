#include "tests/stress/Editor.hpp"

#include "framework/AbstractInputPin.hpp"
#include "framework/AbstractOutputPin.hpp"
#include "framework/CommandProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/PropertyBag.hpp"
#include "framework/Synchronizer.hpp"
#include "host/EditGate.hpp"
#include "host/PropertyStore.hpp"
#include "tests/stress/Failure.hpp"
#include "tests/stress/Graph.hpp"
#include "tests/stress/Platform.hpp"
#include "tests/stress/PropertyEdit.hpp"
#include "tests/stress/RecordingEdit.hpp"
#include "tests/stress/Watchdog.hpp"

#include <chrono>
#include <exception>

#include <Poco/Exception.h>

namespace Stress {

using Quoril::Core::AbstractInputPin;
using Quoril::Core::AbstractOutputPin;
using Quoril::Core::EditGate;
using Quoril::Core::Filter;
using Quoril::Core::Flow;
using Quoril::Core::Synchronizer;

namespace {

/// Between two edits at most: many of them, but recordings live for more than a few rows.
constexpr std::size_t kMostRestMicroseconds = 2000;
constexpr std::size_t kMostBufferSize = 300;

/// What no edit may end with, whatever its value.
bool isMistake(const Poco::Exception& error) {
    return dynamic_cast<const Poco::IllegalStateException*>(&error) != nullptr ||
           dynamic_cast<const Poco::InvalidAccessException*>(&error) != nullptr ||
           dynamic_cast<const Poco::NullPointerException*>(&error) != nullptr ||
           dynamic_cast<const Poco::AssertionViolationException*>(&error) != nullptr ||
           dynamic_cast<const Poco::SystemException*>(&error) != nullptr;
}

}  // namespace

Editor::Editor(Graph& graph, std::uint64_t seed, Beat& beat)
    : graph_(graph), dice_(seed), beat_(beat), thread_([this] { run(); }) {}

Editor::~Editor() {
    isEnding_ = true;
    thread_.join();
}

void Editor::run() {
    nameThisThread(beat_.getName());
    beat_.setIsDue(true);
    while (!isEnding_) {
        editOnce();
        ++editCount_;
        beat_.tick();
        std::this_thread::sleep_for(std::chrono::microseconds(dice_.below(kMostRestMicroseconds)));
    }
    beat_.setIsDue(false);
}

void Editor::editOnce() {
    try {
        edit();
    } catch (const Poco::Exception& error) {
        if (isMistake(error)) fail("an edit ended with " + error.displayText());
        ++refusedCount_;
    } catch (const std::exception& error) {
        fail(std::string("an edit ended with ") + error.what());
    }
}

void Editor::edit() {
    const std::size_t choice = dice_.below(100);
    if (choice < 15) return editLasting();
    if (choice < 20) return look();
    const EditGate gate;
    if (choice < 55) {
        Filter& filter = pickFilter();
        const Synchronizer::DisablerLocker lock(filter.getSynchronizer(), nullptr);
        editProperty(filter, dice_, graph_.getSurroundings());
    } else if (choice < 62) {
        changeConnection();
    } else if (choice < 68) {
        changeBuffer();
    } else if (choice < 92) {
        toggleRecording(graph_, pickFilter(), dice_);
    } else if (choice < 98) {
        startReplay();
    } else {
        changeFilters();
    }
}

/// Without the edit gate: the filter's synchronizer alone must do.
void Editor::editLasting() {
    Filter& filter = *graph_.getFlow().findFilter(dice_.pick(Graph::lastingNames()));
    const Synchronizer::DisablerLocker lock(filter.getSynchronizer(), nullptr);
    editProperty(filter, dice_, graph_.getSurroundings());
}

/// What user interfaces ask for all the time.
void Editor::look() {
    Flow& flow = graph_.getFlow();
    (void)flow.isFinished();
    (void)flow.getPinReports();
    flow.wake();
    const EditGate gate;
    Filter& filter = pickFilter();
    (void)flow.getErrorCount(filter);
    const auto saved = Quoril::Core::PropertyStore::save(filter);
    if (dice_.chance(20)) (void)Quoril::Core::PropertyStore::restore(filter, saved);
}

void Editor::changeFilters() {
    Filter& filter = pickFilter();
    Flow& flow = graph_.getFlow();
    if (dice_.chance(50)) {
        flow.moveFilter(filter, *flow.findLayout(dice_.pick(kLayoutNames)));
        return;
    }
    for (const std::string& name : Graph::lastingNames())
        if (filter.getName() == name) return;
    graph_.remove(filter);
    graph_.restore();
}

void Editor::changeConnection() {
    AbstractInputPin* input = pickInput();
    AbstractOutputPin* output = pickOutput();
    if (input == nullptr || output == nullptr) return;
    AbstractOutputPin* writer = input->getOutputPin();
    if (writer != nullptr && dice_.chance(60)) graph_.getFlow().disconnect(*writer, *input);
    graph_.connect(*output, *input);
}

void Editor::changeBuffer() {
    AbstractInputPin* input = pickInput();
    if (input == nullptr) return;
    const auto& owner = dynamic_cast<const Filter&>(*input->getManager());
    const auto size = static_cast<unsigned>(dice_.below(kMostBufferSize));
    const bool isLifo = dice_.chance(10);
    if (isLifo) graph_.getSurroundings().ledger.noteOrder(owner);
    input->setBuffer({.size = size, .isLifo = isLifo});
    // Only filters that hold no lock of their own in their calls may wait for samples.
    if (owner.getName() == "passer") input->setIsBlocking(dice_.chance(50));
}

void Editor::startReplay() {
    Filter& filter = pickFilter();
    const auto& bag = *filter.getPropertyBag();
    if (bag.find("Replay") == nullptr) return;
    const Synchronizer::DisablerLocker lock(filter.getSynchronizer(), nullptr);
    bag.find("Replay")->deSerialize("0");
    bag.find("Load File")->deSerialize(dice_.pick(graph_.getSurroundings().files.recordings));
    bag.find("AutoReplay")->deSerialize(dice_.chance(70) ? "1" : "0");
    bag.find("Replay")->deSerialize("1");
}

Filter& Editor::pickFilter() {
    for (;;) {
        const std::vector<Filter*> filters = graph_.getFlow().getFilters();
        Filter& filter = *dice_.pick(filters);
        if (dynamic_cast<Pulse*>(&filter) == nullptr) return filter;
    }
}

AbstractInputPin* Editor::pickInput() {
    Filter& filter = pickFilter();
    const Synchronizer::DisablerLocker lock(filter.getSynchronizer(), nullptr);
    const auto& pins = filter.getInputPins();
    return pins.empty() ? nullptr : dice_.pick(pins);
}

AbstractOutputPin* Editor::pickOutput() {
    Filter& filter = pickFilter();
    const Synchronizer::DisablerLocker lock(filter.getSynchronizer(), nullptr);
    const auto& pins = filter.getOutputPins();
    return pins.empty() ? nullptr : dice_.pick(pins);
}

}  // namespace Stress
