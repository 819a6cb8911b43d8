#pragma once

#include <memory>
#include <optional>
#include <string>

namespace Quoril::Runner {

/// Listens, while it lives, to what filters log of recordings that they end by themselves. One at a
/// time; any thread may call.
class RecordingLog {
 public:
    struct Cause {
        std::string text;  ///< "No space left on device"
        bool isOfFile;     ///< the file could not take it; else it could not be written at all
    };

    RecordingLog();
    /// Gives the log back to whom it had before.
    ~RecordingLog();
    RecordingLog(const RecordingLog&) = delete;
    RecordingLog& operator=(const RecordingLog&) = delete;

    /// What the filter logged last, once.
    [[nodiscard]] std::optional<Cause> take(const std::string& filter);

 private:
    class Listener;
    std::unique_ptr<Listener> listener_;
};

}  // namespace Quoril::Runner
