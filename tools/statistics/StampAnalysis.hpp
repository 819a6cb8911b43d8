#pragma once

#include "tools/recording/Recording.hpp"
#include "tools/recording/TimeColumn.hpp"
#include "tools/statistics/LineFit.hpp"
#include "tools/statistics/Percentiles.hpp"
#include "tools/statistics/RefinedPercentiles.hpp"
#include "tools/statistics/RunningMoments.hpp"
#include "tools/statistics/TimeReport.hpp"

#include <cstdint>
#include <optional>

namespace SensorFileTool {

/// Looks at the stamps of a recording, row by row, and then once more.
class StampAnalysis {
 public:
    explicit StampAnalysis(const TimeColumn& time);
    StampAnalysis(const StampAnalysis&) = delete;
    StampAnalysis& operator=(const StampAnalysis&) = delete;
    ~StampAnalysis() = default;

    /// @param before  the row before, or nullptr for the first one
    /// @param number  of the row
    /// @param count  numbers of the counter since the first row, if there is one
    void add(const Row* before, const Row& row, std::uint64_t number, double count);

    /// After the pass: percentiles with more digits, by another pass if they need one.
    void refine(Recording& recording);

    /// After refine(). The unit is guessed by the header's frequency, where neither the user nor
    /// the name tells it.
    /// @param counter  name of the counter whose numbers were added, if it can be trusted
    /// @return the gaps aside
    [[nodiscard]] StampReport report(double nominal, const std::string& counter) const;
    /// The column with the unit of the report.
    [[nodiscard]] TimeColumn findUnit(double nominal) const;

 private:
    void addStep(double step, std::uint64_t number);
    void fillSteps(double secondsPerUnit, StampReport& report) const;
    void fillRates(double nominal, double secondsPerUnit, const std::string& counter,
                   StampReport& report) const;

    TimeColumn named_;          ///< as it was given
    TimeColumn time_;           ///< whose seconds are units
    std::optional<Row> first_;  ///< the first one with a finite stamp
    std::uint64_t firstNumber_ = 0;
    std::uint64_t lastNumber_ = 0;  ///< of the last one
    double lastStamp_ = 0.0;        ///< units, as the following
    double sinceFirst_ = 0.0;
    Percentiles percentiles_;
    RefinedPercentiles refined_;
    RunningMoments moments_;
    LineFit byRows_;
    LineFit byCounter_;
    Occurrences backward_;
    double largestBackward_ = 0.0;
    Occurrences repeated_;
    Occurrences notFinite_;
};

/// Looks for gaps in another pass, if there are any.
/// @param stamps  of the recording
/// @param factor  of the median step, above which a step is a gap
[[nodiscard]] GapReport findGaps(Recording& recording, const TimeColumn& time,
                                 const StampReport& stamps, double factor);

}  // namespace SensorFileTool
