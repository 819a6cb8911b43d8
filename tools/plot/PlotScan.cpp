#include "tools/plot/PlotScan.hpp"

#include "tools/plot/StepHistogram.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

// Stamps beyond this many seconds are dates.
constexpr double kLongestTime = 1e6;
constexpr double kGapSteps = 2.0;
constexpr double kMostMissing = 1e15;

/// Two rows with what lies between them, in the unit of the time column.
struct Step {
    std::uint64_t row = 0;
    double start = 0.0;
    double end = 0.0;
    double size = 0.0;          ///< of the jump: time, or missing numbers
    std::uint64_t missing = 0;  ///< rows
    std::uint64_t skipped = 0;  ///< numbers left out by the counter, if it went forward
};

/// Keeps the largest of any number of steps.
class LargestSteps {
 public:
    void add(const Step& step) {
        if (!(step.size > floor_)) {
            largestLeftOut_ = std::max(largestLeftOut_, step.size);
            return;
        }
        steps_.push_back(step);
        if (steps_.size() >= 2 * kMaxPlotGaps) prune();
    }

    /// Those above a size.
    [[nodiscard]] std::vector<Step> takeAbove(double size, bool& isComplete) {
        if (steps_.size() > kMaxPlotGaps) prune();
        isComplete = !(largestLeftOut_ > size);
        std::erase_if(steps_, [size](const Step& step) { return !(step.size > size); });
        return std::move(steps_);
    }

 private:
    void prune() {
        const auto middle = steps_.begin() + static_cast<std::ptrdiff_t>(kMaxPlotGaps);
        std::nth_element(steps_.begin(), middle, steps_.end(),
                         [](const Step& one, const Step& other) { return one.size > other.size; });
        largestLeftOut_ = std::max(largestLeftOut_, middle->size);
        steps_.erase(middle, steps_.end());
        floor_ = largestLeftOut_;
    }

    std::vector<Step> steps_;
    double floor_ = -1.0;
    double largestLeftOut_ = -1.0;
};

/// Looks at the stamps of rows, in the time column's unit and from the first row on.
class StampScan {
 public:
    explicit StampScan(TimeColumn time) : time_(std::move(time)) {
        secondsPerUnit_ = std::exchange(time_.secondsPerUnit, 1.0);
    }

    /// @param skipped  numbers left out by the counter before the row, if it went forward
    /// @return the stamp
    double add(const Row& row, std::uint64_t index, std::uint64_t skipped) {
        if (index == 0) first_ = row;
        const double stamp = time_.secondsBetween(first_, row);
        if (!std::isfinite(stamp)) {
            ++noNumbers_;
            return last_;
        }
        if (index > 0) addStep({index, last_, stamp, stamp - last_, 0, skipped});
        return last_ = stamp;
    }

    [[nodiscard]] bool isUsable() const { return backward_ == 0 && noNumbers_ == 0; }
    [[nodiscard]] std::string describeFault() const {
        return fmt::format("the stamps of {} {} at {} row(s)", time_.name,
                           noNumbers_ > 0 ? "are no numbers" : "go back",
                           noNumbers_ > 0 ? noNumbers_ : backward_);
    }

    /// The axis that the stamps make.
    [[nodiscard]] PlotAxis makeAxis(std::uint64_t rows, double frequency) const {
        PlotAxis axis;
        axis.time = time_;
        axis.time->secondsPerUnit = secondsPerUnit_;
        axis.first = first_;
        if (rows > 1)
            axis.time->guessUnit(last_ / static_cast<double>(rows - 1), frequency, first_);
        const double first = axis.time->secondsOf(first_);
        const bool isDate = std::abs(first) > kLongestTime;
        axis.start = isDate ? 0.0 : first;
        axis.origin = isDate ? first : 0.0;
        axis.step = steps_.median() * axis.time->secondsPerUnit;
        return axis;
    }

    /// Steps that are too long, with the rows that must be missing.
    std::vector<Step> takeGaps(bool& isComplete) {
        const double median = steps_.median();
        std::vector<Step> gaps = longest_.takeAbove(kGapSteps * median, isComplete);
        for (Step& gap : gaps)
            gap.missing = static_cast<std::uint64_t>(
                std::min(std::round(gap.size / median), kMostMissing) - 1.0);
        return gaps;
    }

 private:
    void addStep(const Step& step) {
        if (step.size < 0.0) ++backward_;
        steps_.add(step.size);
        longest_.add(step);
    }

    TimeColumn time_;
    double secondsPerUnit_ = 1.0;
    Row first_;
    double last_ = 0.0;
    std::uint64_t backward_ = 0;
    std::uint64_t noNumbers_ = 0;
    StepHistogram steps_;
    LargestSteps longest_;
};

/// Looks at the counter of rows.
class CounterScan {
 public:
    explicit CounterScan(CounterColumn counter) : counter_(std::move(counter)) {}

    /// Numbers left out before a row, if the counter went forward.
    [[nodiscard]] std::uint64_t skippedBefore(const Row& row) const {
        return counter_.distanceBetween(last_ + 1, counter_.numberOf(row));
    }

    void add(const Row& row, std::uint64_t index, double lastStamp, double stamp) {
        const std::uint64_t number = counter_.numberOf(row);
        const std::uint64_t last = std::exchange(last_, number);
        if (index == 0) return;
        ++steps_;
        const CounterColumn::Step step = counter_.stepBetween(last, number);
        if (step.isRepeated) return;
        if (!step.isBackward && step.missing == 0) {
            ++single_;
            return;
        }
        missing_ += step.missing;
        jumps_.add({index, lastStamp, stamp, static_cast<double>(step.missing), step.missing});
    }

    /// The rows that are missing at a gap, of which stamps tell about how many: counters begin
    /// again, so they alone do not know.
    /// @param missing  what the counter alone tells
    [[nodiscard]] std::uint64_t reconcile(const Step& gap, std::uint64_t missing) const {
        if (counter_.bitCount >= std::numeric_limits<std::uint64_t>::digits) return missing;
        const auto range = static_cast<double>(std::uint64_t{1} << counter_.bitCount);
        const auto about = static_cast<double>(gap.missing);
        const auto skipped = static_cast<double>(gap.skipped);
        const double found = skipped + range * std::round((about - skipped) / range);
        const bool isLikely = found >= 0.0 && std::abs(found - about) <= 2.0 + about / 10.0;
        return isLikely ? static_cast<std::uint64_t>(found) : missing;
    }

    [[nodiscard]] bool countsRows() const { return 2 * single_ > steps_; }
    [[nodiscard]] const std::string& getName() const { return counter_.name; }
    [[nodiscard]] std::uint64_t getMissing() const { return missing_; }
    std::vector<Step> takeGaps(bool& isComplete) { return jumps_.takeAbove(-1.0, isComplete); }

 private:
    CounterColumn counter_;
    std::uint64_t last_ = 0;
    std::uint64_t steps_ = 0;
    std::uint64_t single_ = 0;
    std::uint64_t missing_ = 0;
    LargestSteps jumps_;
};

/// Both looks together.
class Scan {
 public:
    explicit Scan(const PlotClues& clues) {
        if (clues.time) stamps_.emplace(*clues.time);
        if (clues.counter) counter_.emplace(*clues.counter);
    }

    void add(const Row& row, std::uint64_t number) {
        if (count_ == 0) firstNumber_ = number;
        const double last = stamp_;
        const std::uint64_t skipped = counter_ ? counter_->skippedBefore(row) : 0;
        if (stamps_) stamp_ = stamps_->add(row, count_, skipped);
        if (counter_) counter_->add(row, count_, last, stamp_);
        ++count_;
    }

    PlotScan finish(double frequency) {
        PlotScan scan;
        scan.rows = count_;
        if (counter_ && !counter_->countsRows()) counter_.reset();
        if (stamps_ && !stamps_->isUsable()) {
            scan.notes.push_back(stamps_->describeFault() +
                                 ", so the axis follows the number of the row");
            stamps_.reset();
        }
        scan.axis = makeAxis(frequency);
        addGaps(scan);
        return scan;
    }

 private:
    [[nodiscard]] PlotAxis makeAxis(double frequency) const {
        if (stamps_ && count_ > 0) return stamps_->makeAxis(count_, frequency);
        PlotAxis axis;
        axis.isInSeconds = frequency > 0.0 && std::isfinite(frequency);
        if (axis.isInSeconds) axis.unitsPerRow = 1.0 / frequency;
        axis.step = axis.unitsPerRow;
        return axis;
    }

    void addGaps(PlotScan& scan) {
        bool areStampsComplete = true;
        bool areJumpsComplete = true;
        std::map<std::uint64_t, Step> gaps;
        if (counter_) {
            for (const Step& jump : counter_->takeGaps(areJumpsComplete))
                gaps[jump.row] = jump;
            scan.counter = counter_->getName();
            scan.lost = counter_->getMissing();
        }
        if (stamps_)
            for (const Step& gap : stamps_->takeGaps(areStampsComplete))
                scan.lost += addStampGap(gap, gaps[gap.row]);
        scan.areGapsComplete = areStampsComplete && areJumpsComplete;
        for (const auto& [row, gap] : gaps)
            scan.gaps.push_back(place(gap, scan.axis));
    }

    /// @param known  what the counter told of the gap
    /// @return rows that are missing beyond those
    std::uint64_t addStampGap(const Step& gap, Step& known) const {
        const std::uint64_t missing =
            counter_ ? counter_->reconcile(gap, known.missing) : gap.missing;
        const std::uint64_t more = missing - known.missing;
        known = gap;
        known.missing = missing;
        return more;
    }

    /// From the unit of the stamps to the axis.
    [[nodiscard]] PlotGap place(const Step& gap, const PlotAxis& axis) const {
        if (!axis.time) {
            const auto number = static_cast<double>(firstNumber_ + gap.row);
            return {gap.row, (number - 1.0) * axis.unitsPerRow, number * axis.unitsPerRow,
                    gap.missing};
        }
        const double scale = axis.time->secondsPerUnit;
        return {gap.row, axis.start + gap.start * scale, axis.start + gap.end * scale, gap.missing};
    }

    std::optional<StampScan> stamps_;
    std::optional<CounterScan> counter_;
    std::uint64_t count_ = 0;
    std::uint64_t firstNumber_ = 0;
    double stamp_ = 0.0;
};

}  // namespace

PlotScan scanRows(PlotRows& rows, const PlotClues& clues) {
    Scan scan(clues);
    while (rows.next())
        scan.add(rows.row(), rows.getNumber());
    return scan.finish(rows.getConfig().getSampleFrequency());
}

}  // namespace SensorFileTool
