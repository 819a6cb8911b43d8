#pragma once

#include "framework/AbstractInputPin.hpp"
#include "framework/Export.hpp"
#include "host/Pacing.hpp"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Quoril::Core {

class AbstractOutputPin;
class Clock;
class Filter;
class LayoutManager;

/// What became of the samples of one connected input pin.
struct PinReport {
    std::string filter;
    std::string pin;
    std::string source;  ///< "filter.pin" of the connected output
    PinCounters counters;
    unsigned waiting = 0;     ///< samples still in the buffer
    unsigned bufferSize = 0;  ///< 1: only the newest sample matters, overwriting is no loss
};

/// A graph of filters under layouts, each with a thread of its own while the flow runs.
///
/// Life: add layouts and filters, set properties, connect pins, start, stop; again as often as
/// wanted. Edits of properties and connections may come at any time, from any thread but a
/// layout's own.
class QUORIL_CORE_API Flow {
 public:
    Flow();
    /// @param clock  paces the flow and must outlive it
    explicit Flow(Clock& clock);
    /// Stops the flow and destroys its filters, then its layouts. Not from within an edit or a
    /// processing call: the process ends, for the threads could not be awaited.
    ~Flow();  // NOLINT(bugprone-exception-escape): see above
    Flow(const Flow&) = delete;
    Flow& operator=(const Flow&) = delete;

    /// @param period  shortest time between two rounds of the layout; 0: whenever there is work
    /// @throws Poco::ExistsException if the name is taken
    /// @throws Poco::IllegalStateException from within an edit or a processing call
    LayoutManager& addLayout(const std::string& name,
                             std::chrono::nanoseconds period = std::chrono::nanoseconds(0));
    [[nodiscard]] LayoutManager* findLayout(const std::string& name) const;

    /// Makes a filter of that class and places it under the layout.
    /// @throws Poco::NotFoundException if no plug-in offers the class
    /// @throws Poco::ExistsException if a filter of that name is in the flow
    Filter& addFilter(const std::string& className, const std::string& name, LayoutManager& layout);
    /// Disconnects and destroys a filter; safe while the flow runs.
    /// @throws Poco::NotFoundException if the filter is not in this flow, as moveFilter()
    void removeFilter(Filter& filter);
    /// Moves a filter under another layout; safe while the flow runs.
    void moveFilter(Filter& filter, LayoutManager& layout);
    [[nodiscard]] Filter* findFilter(const std::string& name) const;
    /// In the order of their adding.
    [[nodiscard]] std::vector<Filter*> getFilters() const;

    /// Connects two pins of the flow's filters; with settings, the input's buffer is set first.
    /// @throws Poco::DataFormatException, Poco::ExistsException as AbstractOutputPin::attach
    void connect(AbstractOutputPin& output, AbstractInputPin& input,
                 const std::optional<BufferSettings>& settings = std::nullopt);
    void disconnect(AbstractOutputPin& output, AbstractInputPin& input);

    /// Takes effect at the next start.
    void setPacing(const Pacing& pacing);

    /// Starts the layouts' threads. A running flow is left alone. Neither start nor stop may be
    /// called from within an edit or a processing call.
    /// @throws Poco::IllegalStateException if they are
    void start();
    /// Ends the calls of sources, lets the layouts work off what waits in the buffers (unless
    /// drain is false), ends all waits and joins the threads. Recordings are not ended by this:
    /// that is their "Record" property's business.
    void stop(bool drain = true);
    [[nodiscard]] bool isRunning() const;

    /// True when every source has finished and nothing waits in a buffer that a filter would take.
    /// Only a PacedSource can tell that it has finished: without one the flow never is, and any
    /// other source counts as unfinished once it has sent something.
    [[nodiscard]] bool isFinished() const;

    /// Wakes the layouts, e.g. after an edit that they cannot see by themselves.
    void wake();

    /// One report for each connected input pin, in the order of filters and pins.
    [[nodiscard]] std::vector<PinReport> getPinReports() const;

    /// Number of processing calls of the filter that let an error out.
    [[nodiscard]] std::uint64_t getErrorCount(const Filter& filter) const;

    /// Errors that a filter's processing call let out, told from the layout's thread, under its
    /// lock: filter name and text. Each text is told once per filter. Set before start.
    void setErrorHandler(std::function<void(const std::string& filter, const std::string& text)>);

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace Quoril::Core
