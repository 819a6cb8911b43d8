#pragma once

#include "tools/recording/RecordingInfo.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace SensorFileTool {

/// How often something is so, and in which row first (counted from 0).
struct Occurrences {
    std::uint64_t count = 0;
    std::uint64_t firstRow = 0;

    void add(std::uint64_t row) {
        if (count++ == 0) firstRow = row;
    }
};

/// A step much longer than the others.
struct Gap {
    std::uint64_t row = 0;  ///< behind it
    double at = 0.0;        ///< seconds from the first stamp to its begin
    double length = 0.0;    ///< seconds
};

struct GapReport {
    static constexpr std::size_t kListed = 10;

    double factor = 0.0;     ///< of the median step, above which a step is a gap
    double threshold = 0.0;  ///< seconds; 0: the median step tells nothing
    std::uint64_t count = 0;
    double missing = 0.0;  ///< rows that would have filled them at the median step
    std::optional<Gap> longest;
    std::vector<Gap> first;  ///< the first kListed ones
};

/// The shares that are told, and the keys and labels under which.
struct StepShare {
    double share;
    const char* key;
    const char* label;
};
inline constexpr std::array kStepShares = {
    StepShare{0.0, "min_s", "min"},   StepShare{0.01, "p1_s", "1 %"},
    StepShare{0.05, "p5_s", "5 %"},   StepShare{0.5, "p50_s", "median"},
    StepShare{0.95, "p95_s", "95 %"}, StepShare{0.99, "p99_s", "99 %"},
    StepShare{1.0, "max_s", "max"},
};

/// What a column of time stamps tells. All times are seconds.
struct StampReport {
    std::string column;
    std::string unit;
    bool isUnitGuessed = false;
    double first = 0.0;
    double last = 0.0;
    std::uint64_t steps = 0;  ///< between rows that follow each other, both with finite stamps
    std::array<double, kStepShares.size()> percentiles{};
    double deviation = 0.0;      ///< standard deviation of the steps
    double jitter = 0.0;         ///< the larger distance of the 1 % and 99 % steps from the median
    std::optional<double> rate;  ///< Hz, by the first and the last stamp
    std::optional<double> medianRate;  ///< Hz
    std::optional<double> drift;       ///< (rate by least squares) / nominal - 1
    std::string driftBy;  ///< the counter by which stamps were lined up; empty: by rows
    Occurrences backward;
    double largestBackward = 0.0;
    Occurrences repeated;
    Occurrences notFinite;
    GapReport gaps;
};

/// What a counter tells.
struct CounterReport {
    std::string column;
    std::uint64_t lost = 0;  ///< numbers that were left out
    double lossRatio = 0.0;  ///< of those that should have come
    Occurrences jumps;       ///< places at which numbers were left out
    std::uint64_t wraps = 0;
    Occurrences backward;
    Occurrences repeated;
};

struct TimeReport {
    std::string path;
    std::uint64_t rows = 0;
    double nominal = 0.0;  ///< Hz
    std::optional<StampReport> stamps;
    std::vector<CounterReport> counters;
    Rest rest;
};

/// What is out of order, one sentence each; empty: nothing.
[[nodiscard]] std::vector<std::string> listRemarks(const TimeReport& report);

}  // namespace SensorFileTool
