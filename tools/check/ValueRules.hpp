#pragma once

#include "tools/check/TypedColumnRule.hpp"

#include <cmath>
#include <limits>

#include <fmt/format.h>

namespace SensorFileTool {

/// Time stamps grow from row to row.
template <typename T>
class TimeRule : public TypedColumnRule<TimeRule<T>, T> {
 public:
    TimeRule(std::size_t column, const TimeColumn& time, DefectList& defects)
        : TypedColumnRule<TimeRule<T>, T>(column, time.name, defects), time_(time) {}

    void look(T value, const ColumnSpan& span, std::size_t index) {
        if (!(value > last_) || !hasLast_) [[unlikely]]
            compare(value, span.placeOf(index));
        else
            last_ = value;
    }

    void interrupt() override { hasLast_ = false; }

    [[nodiscard]] bool isSequence() const override { return true; }
    [[nodiscard]] bool canBeZero() const override { return !hasLast_ || last_ < T{}; }

 private:
    /// What is no number is another rule's.
    void compare(T value, const Place& place) {
        if (value != value) return;
        if (hasLast_ && value == last_)
            this->tell(DefectCode::kTimeRepeat, place, [value] {
                return fmt::format("{} is there already in the row before", value);
            });
        if (hasLast_ && value < last_)
            this->tell(DefectCode::kTimeBackward, place, [&] { return describeStep(value); });
        last_ = value;
        hasLast_ = true;
    }

    [[nodiscard]] std::string describeStep(T value) const {
        const double step = static_cast<double>(last_) - static_cast<double>(value);
        if (!time_.isUnitKnown)
            return fmt::format("{} follows {}: back by {:.6g}", value, last_, step);
        return fmt::format("{} follows {}: back by {:.6g} s", value, last_,
                           step * time_.secondsPerUnit);
    }

    TimeColumn time_;
    T last_{};
    bool hasLast_ = false;
};

/// Integers at an end of their type's range: of unsigned types at the largest number alone, for
/// 0 is an ordinary value. Several in a row mean that the sensor went beyond.
template <typename T>
class LimitRule : public TypedColumnRule<LimitRule<T>, T> {
    using Bits = std::make_unsigned_t<T>;

 public:
    using TypedColumnRule<LimitRule<T>, T>::TypedColumnRule;

    void look(T value, const ColumnSpan& span, std::size_t index) {
        if (isAtLimit(value) || run_ != 0) [[unlikely]]
            count(value, span.placeOf(index));
    }

    void interrupt() override { endRun(); }
    void finish() override { endRun(); }

 private:
    static constexpr std::uint64_t kClippedRows = 3;

    /// The smallest signed number follows the largest one, as bits.
    static bool isAtLimit(T value) {
        constexpr Bits kLargest = std::numeric_limits<T>::max();
        constexpr Bits kLimits = std::is_signed_v<T> ? 2 : 1;
        return static_cast<Bits>(static_cast<Bits>(value) - kLargest) < kLimits;
    }

    void count(T value, const Place& place) {
        if (run_ != 0 && value == limit_) {
            ++run_;
            return;
        }
        endRun();
        if (!isAtLimit(value)) return;
        run_ = 1;
        limit_ = value;
        start_ = place;
    }

    void endRun() {
        if (run_ == 0) return;
        const char* const end = limit_ > 0 ? "largest" : "smallest";
        this->tell(run_ < kClippedRows ? DefectCode::kAtLimit : DefectCode::kClipped, start_, [&] {
            return fmt::format("{} row(s) at {}, the {} number of the type", run_, +limit_, end);
        });
        run_ = 0;
    }

    std::uint64_t run_ = 0;
    T limit_{};
    Place start_;
};

/// Numbers that are not finite. Text readers often stop at them.
template <typename T>
class FiniteRule : public TypedColumnRule<FiniteRule<T>, T> {
 public:
    FiniteRule(std::size_t column, std::string name, bool isBinary, DefectList& defects)
        : TypedColumnRule<FiniteRule<T>, T>(column, std::move(name), defects),
          code_(isBinary ? DefectCode::kNonFinite : DefectCode::kNonFiniteText) {}

    void look(T value, const ColumnSpan& span, std::size_t index) {
        if (std::isfinite(value)) return;
        this->tell(code_, span.placeOf(index), [value] {
            return fmt::format("the value is {}", std::isnan(value) ? "nan"
                                                  : value > 0       ? "inf"
                                                                    : "-inf");
        });
    }

 private:
    DefectCode code_;
};

/// Bytes of a bool other than 0 and 1: their lowest bit counts.
class BoolRule : public TypedColumnRule<BoolRule, std::uint8_t> {
 public:
    using TypedColumnRule::TypedColumnRule;

    void look(std::uint8_t value, const ColumnSpan& span, std::size_t index) {
        if (value <= 1) return;
        tell(DefectCode::kOddBool, span.placeOf(index), [value] {
            return fmt::format("the byte 0x{:02x} is read as {}", value, (value & 1) != 0);
        });
    }
};

}  // namespace SensorFileTool
