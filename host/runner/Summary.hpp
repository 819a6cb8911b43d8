#pragma once

#include "host/Flow.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace Quoril::Runner {

/// Samples that full buffers lost. A buffer of 1 keeps the newest sample by design and loses none.
[[nodiscard]] std::uint64_t countLost(const std::vector<Core::PinReport>& reports);

/// A table with one line for each connected input pin: samples pushed, taken, overwritten, waiting.
[[nodiscard]] std::string makeSummary(const std::vector<Core::PinReport>& reports);

}  // namespace Quoril::Runner
