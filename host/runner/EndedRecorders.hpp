#pragma once

#include "framework/AbstractInputPin.hpp"

#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace Quoril::Core {
class Flow;
}

namespace Quoril::Runner {

/// Recorders whose recording ended by itself take no samples any more. Sources that wait for room
/// in every buffer (with `--rate max`, or because their samples have no times) would wait for ever:
/// here such buffers become ones of which only the newest sample counts, which hold nobody back.
class EndedRecorders {
 public:
    explicit EndedRecorders(const Core::Flow& flow) : flow_(flow) {}

    /// From any thread.
    void add(const std::string& filter);
    /// Lets samples pass all of them. On the thread that edits the flow, as giveBack().
    void letPass();
    /// Puts the buffers back: what follows may switch a recording on again.
    void giveBack();

 private:
    struct Buffer {
        Core::AbstractInputPin* pin;
        Core::BufferSettings settings;
    };

    const Core::Flow& flow_;
    std::mutex mutex_;
    std::set<std::string> added_;
    std::set<std::string> filters_;
    std::vector<Buffer> buffers_;
};

}  // namespace Quoril::Runner
