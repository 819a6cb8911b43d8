#pragma once

#include "host/Flow.hpp"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace Quoril::Runner {

/// Makes the progress line: time, rows so far, rows per second since the line before. As rows count
/// the samples of the pin that got the most.
class Progress {
 public:
    /// @param sinceStart  of the flow
    [[nodiscard]] std::string makeLine(std::chrono::nanoseconds sinceStart,
                                       const std::vector<Core::PinReport>& reports);

 private:
    double lastSeconds_ = 0.0;
    std::uint64_t lastRows_ = 0;
};

}  // namespace Quoril::Runner
