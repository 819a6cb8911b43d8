#include "tests/stress/Season.hpp"

#include "framework/AbstractOutputPin.hpp"
#include "framework/Filter.hpp"
#include "host/EditGate.hpp"
#include "host/LayoutManager.hpp"
#include "host/PluginLoader.hpp"
#include "host/SynchronizerLock.hpp"
#include "tests/stress/Editor.hpp"
#include "tests/stress/Platform.hpp"
#include "tests/stress/Watchdog.hpp"

#include <algorithm>
#include <filesystem>
#include <list>
#include <thread>

namespace Stress {

using Quoril::Core::EditGate;
using Quoril::Core::Filter;
using Quoril::Core::Flow;
using Quoril::Core::Pacing;
using Quoril::Core::Synchronizer;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kTick{20};

/// Conducts one flow.
class Season {
 public:
    explicit Season(Stage& stage) : stage_(stage) {
        stage_.loader.load(MODULE_FILE);
        ++stage_.totals.moduleLoads;
        graph_.emplace(stage_.surroundings);
        start();
        for (Beat* beat : stage_.editors)
            editors_.emplace_back(*graph_, stage_.dice.below(SIZE_MAX), *beat);
    }

    ~Season() {
        for (const Editor& editor : editors_) {
            stage_.totals.edits += editor.getEditCount();
            stage_.totals.refusedEdits += editor.getRefusedCount();
        }
        editors_.clear();
        stage_.totals.largestHeap = std::max(stage_.totals.largestHeap, countHeapBytes());
        graph_->checkBalance();
        countSentRows();
        stop();
        graph_.reset();
        stage_.loader.unload(MODULE_FILE);
        checkRecordings();
    }

    Season(const Season&) = delete;
    Season& operator=(const Season&) = delete;

    void run(Clock::duration length) {
        const auto end = Clock::now() + length;
        if (stage_.options.sabotage == Sabotage::kDeadlock) lockCrosswise();
        while (Clock::now() < end) {
            stage_.conductor.tick();
            std::this_thread::sleep_for(kTick);
            checkRecordings();
            conduct();
        }
    }

 private:
    void conduct() {
        const std::size_t choice = stage_.dice.below(100);
        if (choice < 20)
            checkBalance();
        else if (choice < 24)
            restart();
        else if (choice < 28)
            reloadModule();
    }

    void checkBalance() {
        ++stage_.totals.balances;
        graph_->checkBalance(stage_.options.sabotage == Sabotage::kLostSample);
    }

    void start() {
        Flow& flow = graph_->getFlow();
        static constexpr std::array kPacings{Pacing{}, Pacing{},
                                             Pacing{.mode = Pacing::Mode::kFactor, .factor = 1.0},
                                             Pacing{.mode = Pacing::Mode::kMaximum}};
        flow.setPacing(stage_.dice.pick(kPacings));
        flow.start();
        for (Beat* beat : stage_.surroundings.layoutBeats)
            beat->setIsDue(true);
    }

    void stop() {
        for (Beat* beat : stage_.surroundings.layoutBeats)
            beat->setIsDue(false);
        graph_->getFlow().stop(/*drain=*/stage_.dice.chance(50));
    }

    void restart() {
        stop();
        ++stage_.totals.stops;
        start();
    }

    /// The flow runs on without the module's filters.
    void reloadModule() {
        ++stage_.totals.moduleLoads;
        const EditGate gate;
        graph_->whileModuleGoes([this] { stage_.loader.unload(MODULE_FILE); });
        stage_.loader.load(MODULE_FILE);
        graph_->restore();
    }

    void checkRecordings() {
        for (ClosedRecording& recording : stage_.surroundings.ledger.takeClosed()) {
            damage(recording);
            stage_.totals.recordedRows += checkRecording(recording);
            ++stage_.totals.checkedRecordings;
            if (recording.fewestRows == recording.mostRows) ++stage_.totals.exactRecordings;
            std::filesystem::remove(recording.file);
            stage_.conductor.tick();
        }
    }

    void damage(const ClosedRecording& recording) const {
        const auto size = std::filesystem::file_size(recording.file);
        if (recording.mostRows == 0 || recording.fewestRows != recording.mostRows) return;
        if (!recording.isBinary || size == 0) return;
        if (stage_.options.sabotage == Sabotage::kTornRow)
            std::filesystem::resize_file(recording.file, size - 1);
        if (stage_.options.sabotage == Sabotage::kLostRow)
            std::filesystem::resize_file(recording.file,
                                         size - countSampleBytes(recording) / recording.mostRows);
    }

    /// The sources of numbers live as long as the flow.
    void countSentRows() {
        for (const char* name : {"numbers", "otherNumbers"}) {
            Filter& source = *graph_->getFlow().findFilter(name);
            const Synchronizer::DisablerLocker lock(source.getSynchronizer(), nullptr);
            stage_.totals.sentRows += source.findOutputPin("one")->getPushCount();
        }
    }

    /// Two threads take the locks of two layouts in opposite orders, past the gate that keeps edits
    /// from doing so.
    void lockCrosswise() {
        const auto lockOf = [this](std::size_t i) {
            return graph_->getFlow().findLayout(kLayoutNames[i])->getSynchronizer().getLock();
        };
        for (const std::size_t first : {std::size_t{0}, std::size_t{1}})
            std::thread([one = lockOf(first), other = lockOf(1 - first), first] {
                nameThisThread("crosswise " + std::to_string(first));
                one->lock();
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
                other->lock();
            }).detach();
    }

    Stage& stage_;
    std::optional<Graph> graph_;
    std::list<Editor> editors_;
};

}  // namespace

void runSeason(Stage& stage, std::chrono::steady_clock::duration length) {
    Season(stage).run(length);
}

}  // namespace Stress
