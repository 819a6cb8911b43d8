#include "tools/statistics/StampAnalysis.hpp"

#include "tools/recording/RowReader.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace SensorFileTool {

namespace {

constexpr std::size_t kLow = 1;  // indexes of kStepShares
constexpr std::size_t kMedian = 3;
constexpr std::size_t kHigh = 5;
constexpr double kNoStep = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kGreatest = kStepShares.size() - 1;

TimeColumn inUnits(TimeColumn time) {
    time.secondsPerUnit = 1.0;
    return time;
}

std::optional<double> rateOf(double period) {
    const double rate = 1.0 / period;
    return period > 0.0 && std::isfinite(rate) ? std::optional(rate) : std::nullopt;
}

/// Reads a recording again.
/// @param take  called with the rows before and behind each step, the latter's number, and the step
template <typename Take>
void readSteps(Recording& recording, const TimeColumn& time, const Take& take) {
    recording.getReader().rewind();
    RowReader rows(recording);
    Row before;
    for (std::uint64_t number = 0; rows.next(); ++number) {
        const double step = number == 0 ? kNoStep : time.secondsBetween(before, rows.row());
        if (std::isfinite(step)) take(before, rows.row(), number, step);
        rows.exchangeRow(before);
    }
}

void addGap(const Gap& gap, double median, GapReport& gaps) {
    ++gaps.count;
    gaps.missing += std::round(gap.length / median) - 1.0;
    if (!gaps.longest || gap.length > gaps.longest->length) gaps.longest = gap;
    if (gaps.first.size() < GapReport::kListed) gaps.first.push_back(gap);
}

}  // namespace

StampAnalysis::StampAnalysis(const TimeColumn& time) : named_(time), time_(inUnits(time)) {}

void StampAnalysis::add(const Row* before, const Row& row, std::uint64_t number, double count) {
    if (!std::isfinite(row.getValue(time_.index))) {
        notFinite_.add(number);
        return;
    }
    if (!first_) {
        first_ = row;
        firstNumber_ = number;
    }
    lastNumber_ = number;
    lastStamp_ = row.getValue(time_.index);
    sinceFirst_ = time_.secondsBetween(*first_, row);
    byRows_.add(static_cast<double>(number), sinceFirst_);
    byCounter_.add(count, sinceFirst_);
    if (before != nullptr && std::isfinite(before->getValue(time_.index)))
        addStep(time_.secondsBetween(*before, row), number);
}

void StampAnalysis::addStep(double step, std::uint64_t number) {
    if (!std::isfinite(step)) return;  // from one end of the doubles to the other
    percentiles_.add(step);
    moments_.add(step);
    if (step == 0.0) repeated_.add(number);
    if (step < 0.0) {
        backward_.add(number);
        largestBackward_ = std::max(largestBackward_, -step);
    }
}

void StampAnalysis::refine(Recording& recording) {
    std::array<double, kStepShares.size()> shares{};
    std::transform(kStepShares.begin(), kStepShares.end(), shares.begin(),
                   [](const StepShare& one) { return one.share; });
    refined_ = RefinedPercentiles(percentiles_, shares);
    if (!refined_.isExact())
        readSteps(recording, time_, [this](const Row&, const Row&, std::uint64_t, double step) {
            refined_.add(step);
        });
}

TimeColumn StampAnalysis::findUnit(double nominal) const {
    TimeColumn time = named_;
    if (first_ && lastNumber_ > firstNumber_)
        time.guessUnit(sinceFirst_ / static_cast<double>(lastNumber_ - firstNumber_), nominal,
                       *first_);
    return time;
}

StampReport StampAnalysis::report(double nominal, const std::string& counter) const {
    const TimeColumn time = findUnit(nominal);
    StampReport report;
    report.column = time.name;
    report.unit = time.getUnit();
    report.isUnitGuessed = !time.isUnitKnown;
    if (first_) report.first = time.secondsOf(*first_);
    report.last = lastStamp_ * time.secondsPerUnit;
    report.backward = backward_;
    report.largestBackward = largestBackward_ * time.secondsPerUnit;
    report.repeated = repeated_;
    report.notFinite = notFinite_;
    fillSteps(time.secondsPerUnit, report);
    fillRates(nominal, time.secondsPerUnit, counter, report);
    return report;
}

void StampAnalysis::fillSteps(double secondsPerUnit, StampReport& report) const {
    report.steps = percentiles_.getCount();
    std::transform(
        kStepShares.begin(), kStepShares.end(), report.percentiles.begin(),
        [&](const StepShare& one) { return refined_.getPercentile(one.share) * secondsPerUnit; });
    report.deviation = moments_.getDeviation() * secondsPerUnit;
    const auto& steps = report.percentiles;
    report.jitter = std::max(steps[kHigh] - steps[kMedian], steps[kMedian] - steps[kLow]);
}

void StampAnalysis::fillRates(double nominal, double secondsPerUnit, const std::string& counter,
                              StampReport& report) const {
    report.rate =
        rateOf(sinceFirst_ * secondsPerUnit / static_cast<double>(lastNumber_ - firstNumber_));
    report.medianRate = rateOf(report.percentiles[kMedian]);
    const auto slope = (counter.empty() ? byRows_ : byCounter_).getSlope();
    if (!slope || !(nominal > 0.0)) return;
    const double drift = 1.0 / (*slope * secondsPerUnit * nominal) - 1.0;
    if (!std::isfinite(drift)) return;
    report.drift = drift;
    report.driftBy = counter;
}

GapReport findGaps(Recording& recording, const TimeColumn& time, const StampReport& stamps,
                   double factor) {
    GapReport gaps;
    gaps.factor = factor;
    const double median = stamps.percentiles[kMedian];
    if (stamps.steps == 0 || !(median > 0.0)) return gaps;
    gaps.threshold = factor * median;
    if (!(stamps.percentiles[kGreatest] > gaps.threshold)) return gaps;
    std::optional<Row> first;
    readSteps(recording, time, [&](const Row& before, const Row&, std::uint64_t row, double step) {
        if (!first) first = before;
        if (step > gaps.threshold)
            addGap({row, time.secondsBetween(*first, before), step}, median, gaps);
    });
    return gaps;
}

}  // namespace SensorFileTool
