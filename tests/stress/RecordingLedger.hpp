#pragma once

#include "framework/AbstractProperty.hpp"
#include "tests/stress/RecordingCheck.hpp"
#include "tests/stress/StressFilters.hpp"

#include <cstdint>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Stress {

/// Follows every recording from its start to its end, whoever starts and ends it, and knows what
/// must be in its file.
///
/// A row takes one sample of every pin; the last pin that a recorder asks is asked only when the
/// others had one. What that pin handed over is therefore what must be in the file, row by row.
/// Closed files are renamed at once, so that the next recording may have their name.
class RecordingLedger final : public Quoril::Core::PropertyObserver {
 public:
    /// @param folder  for the closed files
    explicit RecordingLedger(std::string folder);
    ~RecordingLedger() override;

    /// Follows a filter, if it is a recorder. Call under the edit gate, as the other operations
    /// with filters.
    void watch(Quoril::Core::Filter& filter);
    /// Stops following a filter that is about to be destroyed, and returns the recording that its
    /// destruction will close, if one is open: hand it to close() then.
    [[nodiscard]] std::optional<ClosedRecording> release(Quoril::Core::Filter& filter);
    void close(ClosedRecording recording);

    /// Call before an output is connected to a pin of the filter.
    /// @param sampleSize  elements of its samples
    void noteConnection(const Quoril::Core::Filter& filter, const std::string& pin,
                        std::size_t sampleSize);
    /// Call before a pin of the filter changes the order of its samples.
    void noteOrder(const Quoril::Core::Filter& filter);

    /// What was closed since the last time.
    [[nodiscard]] std::vector<ClosedRecording> takeClosed();

    void valueChanged(const Quoril::Core::AbstractProperty& property) override;
    void attributeChanged(const Quoril::Core::AbstractProperty& property) override;

 private:
    struct Open {
        ClosedRecording closing;
        const MatrixInput* lastPin = nullptr;
        std::uint64_t takenBefore = 0;
        std::uint64_t topologyBefore = 0;
        bool isExact = true;                        ///< no row is left out on purpose
        std::map<std::string, std::size_t> widths;  ///< columns of each pin, where they are free
    };
    struct Recorder {
        Quoril::Core::Filter* filter;
        const Quoril::Core::AbstractProperty* record;
        const Quoril::Core::AbstractProperty* pause;
        std::optional<Open> open;
    };

    static Open start(Quoril::Core::Filter& filter);
    static void describe(Quoril::Core::Filter& filter, Open& open);
    static ClosedRecording end(const Open& open);
    Recorder* find(const Quoril::Core::Filter& filter);
    Quoril::Core::Filter* findOwner(const Quoril::Core::AbstractProperty& property);
    void closeLocked(ClosedRecording recording);

    const std::string folder_;
    std::mutex mutex_;
    std::list<Recorder> recorders_;
    std::vector<ClosedRecording> closed_;
    unsigned nextFile_ = 0;
};

}  // namespace Stress
