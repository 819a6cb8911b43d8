#pragma once

#include "framework/Export.hpp"
#include "host/SourcePacer.hpp"

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace Quoril::Core {

class AbstractInputPin;
class AbstractOutputPin;
class Filter;
class PacedSource;
class WakeSignal;

/// Errors that processing calls let out: filter name and text.
using ErrorHandler = std::function<void(const std::string& filter, const std::string& text)>;

/// One filter of a layout, as its scheduler sees it. Used under the layout's lock.
///
/// The pins are those of the last wiring; AFTER A CALL THEY MAY BE GONE: compare the topology
/// version first.
class QUORIL_CORE_API FilterTask {
 public:
    /// An own input pin that is connected, or one of another layout that is attached here.
    struct Border {
        AbstractInputPin* pin;
        WakeSignal* otherSide;  ///< of the layout at the connection's other end; may be null
    };

    explicit FilterTask(Filter& filter);

    [[nodiscard]] Filter& getFilter() const noexcept { return filter_; }
    [[nodiscard]] PacedSource* getPacedSource() const noexcept { return pacedSource_; }
    /// Filters without input pins send of their own accord.
    [[nodiscard]] bool isSource() const noexcept { return isSource_; }
    [[nodiscard]] SourcePacer& getPacer() noexcept { return pacer_; }

    /// Looks at the filter's pins and connections anew.
    void wire();
    /// Adds pins that must have room before the filter is called.
    void addRoomPins(const std::vector<AbstractInputPin*>& pins);
    /// Attached pins, of this layout and others, that hold more than one sample.
    [[nodiscard]] const std::vector<AbstractInputPin*>& getRoomPins() const noexcept {
        return roomPins_;
    }

    /// A run begins.
    void begin();

    /// Something was pushed to a connected input since the last call. Between layouts, what the
    /// writer's call in progress has pushed does not count yet.
    [[nodiscard]] bool hasNews() const;
    /// Largest number of samples that wait at one input.
    [[nodiscard]] unsigned getWaitingCount() const;
    /// Samples taken so far, by all inputs.
    [[nodiscard]] std::uint64_t getTakenCount() const;

    /// Every pin that must have room takes what one call may push. When one has none, its layout
    /// is asked to tell when it has taken something.
    [[nodiscard]] bool findRoom() const;

    /// Runs the processing call. What it lets out is counted, and told once per text.
    void call(const ErrorHandler& onError);
    /// After a call whose pins are still there: looks at what was pushed and tells other layouts.
    /// @return true if anything was pushed
    bool finishCall();
    /// Tells the layouts of the connected writers that there is room again, if they asked.
    void tellRoom() const;

    /// Time stamp of the first pin that the last finished call pushed.
    [[nodiscard]] double getLastStamp() const noexcept { return lastStamp_; }
    [[nodiscard]] bool hasPushedInRun() const noexcept { return hasPushedInRun_; }
    [[nodiscard]] std::uint64_t getErrorCount() const noexcept { return errorCount_; }

    /// The filter must be called although nothing new came.
    bool isPending = false;

 private:
    struct Output {
        const AbstractOutputPin* pin;
        std::uint64_t pushCount;  ///< at the last look
    };

    void wireInputs();
    void wireOutputs();
    void publish();
    [[nodiscard]] bool hasRoom() const;
    void tellError(const std::string& text, const ErrorHandler& onError);

    Filter& filter_;
    PacedSource* const pacedSource_;
    bool isSource_ = true;
    std::vector<AbstractInputPin*> localInputs_;
    std::vector<Border> borderInputs_;
    std::vector<Output> outputs_;
    std::vector<Border> borderReaders_;
    std::vector<AbstractInputPin*> roomPins_;
    SourcePacer pacer_;
    std::uint64_t largestBurst_ = 1;
    double lastStamp_ = 0.0;
    bool hasPushedInRun_ = false;
    std::uint64_t errorCount_ = 0;
    std::set<std::string> toldErrors_;
};

}  // namespace Quoril::Core
