#pragma once

#include "tests/stress/Dice.hpp"

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace Quoril::Core {
class AbstractInputPin;
class AbstractOutputPin;
class Filter;
}  // namespace Quoril::Core

namespace Stress {

class Beat;
class Graph;

/// A thread that edits a running flow at random: properties, connections, buffers, recordings,
/// replays, filters. What an edit refuses is an ordinary answer.
class Editor {
 public:
    Editor(Graph& graph, std::uint64_t seed, Beat& beat);
    /// Ends the thread.
    ~Editor();
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    [[nodiscard]] std::uint64_t getEditCount() const noexcept { return editCount_; }
    [[nodiscard]] std::uint64_t getRefusedCount() const noexcept { return refusedCount_; }

 private:
    void run();
    void editOnce();
    void edit();
    void editLasting();
    void look();
    void changeFilters();
    void changeConnection();
    void changeBuffer();
    void startReplay();
    Quoril::Core::Filter& pickFilter();
    /// Null when there is none.
    Quoril::Core::AbstractInputPin* pickInput();
    Quoril::Core::AbstractOutputPin* pickOutput();

    Graph& graph_;
    Dice dice_;
    Beat& beat_;
    std::atomic<bool> isEnding_{false};
    std::atomic<std::uint64_t> editCount_{0};
    std::atomic<std::uint64_t> refusedCount_{0};
    std::thread thread_;
};

}  // namespace Stress
