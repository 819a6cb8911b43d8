#include "host/filters/RowPace.hpp"

namespace Quoril::Core {

void RowPace::setRate(double rate) {
    start_ = getDueTime().value_or(start_);
    row_ = 0;
    rate_ = rate;
}

std::optional<double> RowPace::getDueTime() const {
    if (rate_ <= 0.0) return std::nullopt;
    return start_ + static_cast<double>(row_) / rate_;
}

}  // namespace Quoril::Core
