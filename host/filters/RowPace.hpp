#pragma once

#include "framework/Export.hpp"

#include <cstdint>
#include <optional>

namespace Quoril::Core {

/// When a source's rows are due, at a rate that may change under way. Due times are multiples of
/// the row's duration, not sums, so that they do not drift.
class QUORIL_CORE_API RowPace {
 public:
    /// @param rate  rows per second; 0: as fast as they are taken
    void setRate(double rate);

    /// Passes rows.
    void advance(std::uint64_t rows = 1) { row_ += rows; }

    /// When the next row is due, seconds since the first one; nothing at rate 0.
    [[nodiscard]] std::optional<double> getDueTime() const;

 private:
    double rate_ = 0.0;
    std::uint64_t row_ = 0;  ///< since the rate was set
    double start_ = 0.0;     ///< when row 0 was due
};

}  // namespace Quoril::Core
