#pragma once

#include "host/Flow.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace Quoril::Runner {

/// Samples that were lost in full buffers, or with buffers that an edit cleared. A buffer of 1
/// keeps the newest sample by design and loses none.
[[nodiscard]] std::uint64_t countLost(const std::vector<Core::PinReport>& reports);

/// A table with one line for each connected input pin: samples pushed, taken, overwritten, waiting;
/// and cleared, if any were.
[[nodiscard]] std::string makeSummary(const std::vector<Core::PinReport>& reports);

}  // namespace Quoril::Runner
