#include "tools/statistics/CounterAnalysis.hpp"

namespace SensorFileTool {

void CounterAnalysis::add(const Row& row, std::uint64_t number) {
    const std::uint64_t value = counter_.numberOf(row);
    const CounterColumn::Step step =
        number == 0 ? CounterColumn::Step{} : counter_.stepBetween(last_, value);
    if (step.isRepeated) {
        result_.repeated.add(number);
    } else if (step.isBackward) {
        result_.backward.add(number);
        ++taken_;
    } else {
        ++taken_;
        if (number > 0) sinceFirst_ += step.missing + 1;
        if (number > 0 && value < last_) ++result_.wraps;
        if (step.missing > 0) result_.jumps.add(number);
        result_.lost += step.missing;
    }
    last_ = value;
}

CounterReport CounterAnalysis::report() const {
    CounterReport report = result_;
    report.column = counter_.name;
    const double lost = static_cast<double>(report.lost);
    if (report.lost > 0) report.lossRatio = lost / (lost + static_cast<double>(taken_));
    return report;
}

}  // namespace SensorFileTool
