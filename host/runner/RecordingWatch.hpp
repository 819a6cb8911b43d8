#pragma once

#include "framework/AbstractProperty.hpp"
#include "host/runner/Platform.hpp"
#include "host/runner/SpaceWatch.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace Quoril::Core {
class Filter;
class Flow;
}  // namespace Quoril::Core

namespace Quoril::Runner {

/// Follows the recordings of a flow. It never waits for a filter: one that sleeps in its processing
/// call holds back all who ask it for a property.
class RecordingWatch final : public Core::PropertyObserver {
 public:
    /// What happens to a recording without anybody in the flow having asked for it.
    enum class Event {
        kEnded,    ///< "Record" turned false, and not by the thread that made the watch, which is
                   ///< the one that edits the flow
        kRemoved,  ///< the file has no name any more: what is written is lost
        kMoved,    ///< the file has another name, or its folder has
    };
    using OnEvent =
        std::function<void(Event event, const std::string& filter, const std::string& path)>;

    /// @param onEvent  called from any thread, once for each recording and event
    RecordingWatch(const Core::Flow& flow, OnEvent onEvent);
    /// Stops observing; the flow must still be there.
    ~RecordingWatch() override;
    RecordingWatch(const RecordingWatch&) = delete;
    RecordingWatch& operator=(const RecordingWatch&) = delete;

    /// The recordings in progress, as far as they go into files of which something is known. Looks
    /// whether they are where they belong.
    std::vector<RecordedFile> look();

    void valueChanged(const Core::AbstractProperty& property) override;
    void attributeChanged(const Core::AbstractProperty& /*property*/) override {}

 private:
    struct Recording {
        const Core::Filter* filter;
        Core::AbstractProperty* record;
        std::uint64_t number = 0;  ///< of the last start
        std::string path;
        std::unique_ptr<WatchedFile> file;  ///< while it records
        std::optional<Event> told;          ///< of its file
    };
    struct Found {
        Event event;
        std::string filter;
        std::string path;
    };

    [[nodiscard]] std::vector<Found> note(const Core::AbstractProperty& property);
    void begin(Recording& recording);
    std::vector<Found> end(Recording& recording) const;
    static std::vector<Found> lookFor(Recording& recording, const FileFacts& facts);
    void tell(const std::vector<Found>& found) const;

    const std::thread::id editor_ = std::this_thread::get_id();
    OnEvent onEvent_;
    std::mutex mutex_;
    std::vector<Recording> recordings_;
    std::uint64_t starts_ = 0;
};

}  // namespace Quoril::Runner
