#pragma once

#include "tools/check/Defect.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace SensorFileTool {

/// The defects of a file: all are counted, of each code the first ones are kept. So the memory is
/// bounded, however damaged a file is.
class DefectList {
 public:
    /// No list keeps more defects, whatever is asked for.
    static constexpr std::size_t kMaxKept = 100'000;

    /// @param maxPerCode  kept of each code
    explicit DefectList(std::size_t maxPerCode) : maxPerCode_(maxPerCode) {}

    /// @param describe  gives the message, a std::string; called if the defect is kept
    template <typename Describe>
    void add(DefectCode code, const Place& place, std::string_view column, Describe describe) {
        const bool isKept = ++counts_[indexOf(code)] <= maxPerCode_ && kept_.size() < kMaxKept;
        if (isKept) kept_.push_back({code, place, std::string(column), describe()});
    }

    /// In the order of their offsets.
    void sort();

    [[nodiscard]] const std::vector<Defect>& getKept() const { return kept_; }
    /// With those that are not kept.
    [[nodiscard]] std::uint64_t count(DefectCode code) const { return counts_[indexOf(code)]; }
    [[nodiscard]] std::uint64_t count(Severity severity) const;
    [[nodiscard]] std::uint64_t countKept(DefectCode code) const;
    /// Of the file's form, notes left out.
    [[nodiscard]] std::uint64_t countStructure() const;
    /// The codes that were found, in their own order.
    [[nodiscard]] std::vector<DefectCode> listCodes() const;

 private:
    static std::size_t indexOf(DefectCode code) { return static_cast<std::size_t>(code); }

    std::size_t maxPerCode_;
    std::array<std::uint64_t, kDefectKindCount> counts_{};
    std::vector<Defect> kept_;
};

}  // namespace SensorFileTool
