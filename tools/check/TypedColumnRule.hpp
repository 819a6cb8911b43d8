#pragma once

#include "sensorfile/ByteOrder.hpp"
#include "tools/check/ColumnRule.hpp"

#include <bit>
#include <string>
#include <type_traits>

namespace SensorFileTool {

/// The loops of a rule for values of type T: Rule has look(value, span, index), which is inlined
/// into them.
template <typename Rule, typename T>
class TypedColumnRule : public ColumnRule {
 public:
    TypedColumnRule(std::size_t column, std::string name, DefectList& defects)
        : ColumnRule(column), name_(std::move(name)), defects_(defects) {}

    void scan(const ColumnSpan& span) override {
        if (span.isBigEndian)
            loop<std::endian::big>(span);
        else
            loop<std::endian::little>(span);
    }

    void take(double value, std::uint64_t bits, const Place& place) override {
        const ColumnSpan one{nullptr, 1, 0, place.offset, place.row};
        rule().look(toValue(value, bits), one, 0);
    }

 protected:
    [[nodiscard]] const std::string& getName() const { return name_; }
    template <typename Describe>
    void tell(DefectCode code, const Place& place, Describe describe) {
        defects_.add(code, place, name_, describe);
    }

 private:
    Rule& rule() { return static_cast<Rule&>(*this); }

    template <std::endian Order>
    void loop(const ColumnSpan& span) {
        const char* value = span.first;
        for (std::size_t i = 0; i < span.count; ++i, value += span.rowSize)
            rule().look(SensorFile::loadAs<T, Order>(value), span, i);
    }

    static T toValue(double value, std::uint64_t bits) {
        if constexpr (std::is_integral_v<T> && sizeof(T) == sizeof bits)
            return static_cast<T>(bits);
        else
            return static_cast<T>(value);
    }

    std::string name_;
    DefectList& defects_;
};

}  // namespace SensorFileTool
