#pragma once

#include "tools/common/Quantity.hpp"
#include "tools/statistics/TimeReport.hpp"

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace SensorFileTool {

/// A limit that a recording does not keep.
struct Violation {
    std::string limit;    ///< the option
    std::string allowed;  ///< as the user wrote it
    std::string found;    ///< a sentence with the value
};

/// The user's limits to a report on time.
class TimeLimits {
 public:
    /// Adds --max-loss and the others.
    void define(CLI::App& app);
    /// After the options have been read.
    /// @throws UsageException if a limit cannot be understood, or needs a column that is not there
    void parse(bool hasStamps, bool hasCounters);

    /// @return in the order of the options
    [[nodiscard]] std::vector<Violation> judge(const TimeReport& report) const;

 private:
    [[nodiscard]] bool isAny() const;
    void judgeCounter(const CounterReport& counter, std::vector<Violation>& found) const;
    void judgeStamps(const StampReport& stamps, std::vector<Violation>& found) const;
    void judgeDrift(const StampReport& stamps, std::vector<Violation>& found) const;

    struct Texts {
        std::string loss, jitter, gap, drift, backward, repeated;
    };
    Texts texts_;
    std::optional<Quantity> loss_;
    std::optional<Quantity> jitter_;
    std::optional<Quantity> gap_;
    std::optional<Quantity> drift_;
    std::optional<Quantity> backward_;
    std::optional<Quantity> repeated_;
};

}  // namespace SensorFileTool
