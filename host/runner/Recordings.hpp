#pragma once

#include "framework/AbstractProperty.hpp"
#include "host/runner/FlowModel.hpp"
#include "host/runner/Problems.hpp"

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace Quoril::Core {
class Filter;
class Flow;
}  // namespace Quoril::Core

namespace Quoril::Runner {

/// Warns of columns that a text recording writes as single characters: of their values, 9 to 13 and
/// 32 are white space and vanish when the file is read.
void warnOfLossyTextColumns(const FilterEntry& entry, const Core::Filter& filter,
                            Problems& problems);

/// Switches off "Record" of every filter that records, so that its file is complete. A filter that
/// refuses is told as a failure.
void closeRecordings(const Core::Flow& flow, Problems& problems);

/// Notices recordings that end by themselves, e.g. because the disk is full: "Record" turns false,
/// and not by the thread that made the watch, which is the one that edits the flow.
class RecordingWatch final : public Core::PropertyObserver {
 public:
    using OnEnd = std::function<void(const std::string& filter, const std::string& file)>;

    /// @param onEnd  called with the names of the filter and of its file, from any thread
    RecordingWatch(const Core::Flow& flow, OnEnd onEnd);
    /// Stops observing; the flow must still be there.
    ~RecordingWatch() override;
    RecordingWatch(const RecordingWatch&) = delete;
    RecordingWatch& operator=(const RecordingWatch&) = delete;

    void valueChanged(const Core::AbstractProperty& property) override;
    void attributeChanged(const Core::AbstractProperty& /*property*/) override {}

 private:
    struct Watched {
        const Core::Filter* filter;
        Core::AbstractProperty* record;
    };

    const std::thread::id editor_ = std::this_thread::get_id();
    OnEnd onEnd_;
    std::vector<Watched> watched_;
};

}  // namespace Quoril::Runner
