#pragma once

#include "host/Flow.hpp"
#include "tests/stress/InputFiles.hpp"
#include "tests/stress/RecordingLedger.hpp"

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Stress {

class Beat;

inline constexpr std::array kLayoutNames{"record", "unit", "replay"};

/// What outlives the flows.
struct Surroundings {
    explicit Surroundings(const std::string& theFolder) : folder(theFolder) {}

    /// A name that no file has yet.
    [[nodiscard]] std::string newFile();

    const std::string folder;
    const InputFiles files{folder};
    RecordingLedger ledger{folder};
    std::array<Beat*, kLayoutNames.size()> layoutBeats{};
    std::atomic<unsigned> nextFile{0};
    std::atomic<std::uint64_t> startedRecordings{0};
};

/// A flow of all filters there are, in three layouts: one records anything, one records a unit, one
/// replays. Pins are connected by the editors.
class Graph {
 public:
    /// The filters that are always there: they may be edited without the edit gate.
    static const std::vector<std::string>& lastingNames();

    explicit Graph(Surroundings& surroundings);
    ~Graph();
    Graph(const Graph&) = delete;
    Graph& operator=(const Graph&) = delete;

    [[nodiscard]] Quoril::Core::Flow& getFlow() noexcept { return flow_; }
    [[nodiscard]] Surroundings& getSurroundings() noexcept { return surroundings_; }

    // With filters and pins: call under the edit gate.

    /// Adds the filters that are missing and can be had.
    void restore();
    /// Destroys a filter; a recording of its is closed by that.
    void remove(Quoril::Core::Filter& filter);
    /// Runs what destroys all filters of the module.
    void whileModuleGoes(const std::function<void()>& operation);
    /// Connects two pins, unless a recorder of units would get matrices of another size: those
    /// shift the columns of its file by design.
    void connect(Quoril::Core::AbstractOutputPin& output, Quoril::Core::AbstractInputPin& input);

    /// Every sample that was pushed to a pin was taken, overwritten, cleared, or waits: with all
    /// layouts at rest. Anything else is a failure of the program.
    /// @param takesOneAway  take a sample away behind the counters, to be noticed
    void checkBalance(bool takesOneAway = false);

 private:
    void add(const std::string& className, const std::string& name,
             Quoril::Core::LayoutManager& layout);

    Surroundings& surroundings_;
    Quoril::Core::Flow flow_;
};

}  // namespace Stress
