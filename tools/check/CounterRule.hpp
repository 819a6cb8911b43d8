#pragma once

#include "tools/check/TypedColumnRule.hpp"

#include <limits>

#include <fmt/format.h>

namespace SensorFileTool {

/// A counter goes on by one from row to row, and behind its type's largest number with 0 (or, if
/// it is signed and counts so, with the smallest number).
template <typename T>
class CounterRule : public TypedColumnRule<CounterRule<T>, T> {
    using Number = std::make_unsigned_t<T>;

 public:
    using TypedColumnRule<CounterRule<T>, T>::TypedColumnRule;

    void look(T value, const ColumnSpan& span, std::size_t index) {
        const auto number = static_cast<Number>(value);
        isCounting_ |= number != 0;
        if (number != next_ || !hasNext_) [[unlikely]]
            goTo(number, span.placeOf(index));
        next_ = static_cast<Number>(number + 1);
    }

    void interrupt() override { hasNext_ = false; }

    [[nodiscard]] bool isSequence() const override { return true; }
    [[nodiscard]] bool canBeZero() const override {
        return !hasNext_ || !isCounting_ || next_ == 0 || previous() == kLargest;
    }

 private:
    static constexpr T kLargest = std::numeric_limits<T>::max();

    [[nodiscard]] T previous() const { return static_cast<T>(static_cast<Number>(next_ - 1)); }

    void goTo(Number number, const Place& place) {
        if (hasNext_) tellStep(previous(), static_cast<T>(number), place);
        hasNext_ = true;
    }

    void tellStep(T from, T to, const Place& place) {
        const auto step = static_cast<Number>(static_cast<Number>(to) - static_cast<Number>(from));
        const Number half = std::numeric_limits<Number>::max() / 2;
        if (step == 0) {
            this->tell(DefectCode::kCounterRepeat, place,
                       [to] { return fmt::format("{} is there already in the row before", +to); });
        } else if (step <= half && to > from) {
            this->tell(DefectCode::kCounterJump, place, [=] {
                return fmt::format("{} follows {}: {} number(s) missing", +to, +from, step - 1);
            });
        } else if (step <= half) {
            if (from == kLargest && to == 0) return;
            this->tell(DefectCode::kCounterWrap, place, [=] {
                return fmt::format(
                    "{} follows {}: it begins again without {}, {} number(s) "
                    "missing",
                    +to, +from, +kLargest, step - 1);
            });
        } else if (to != 0) {
            this->tell(DefectCode::kCounterBackward, place,
                       [=] { return fmt::format("{} follows {}", +to, +from); });
        } else if (from != kLargest) {
            this->tell(DefectCode::kCounterRestart, place, [=] {
                return fmt::format("it begins again at 0 behind {}, before {}", +from, +kLargest);
            });
        }
    }

    Number next_ = 0;
    bool hasNext_ = false;
    bool isCounting_ = false;
};

}  // namespace SensorFileTool
