#include "tools/statistics/TimeLimits.hpp"

#include "tools/common/UsageException.hpp"

#include <cmath>

#include <CLI/App.hpp>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr const char* kLoss = "--max-loss";
constexpr const char* kJitter = "--max-jitter";
constexpr const char* kGap = "--max-gap";
constexpr const char* kDrift = "--max-drift";
constexpr const char* kBackward = "--max-backward";
constexpr const char* kRepeated = "--max-repeated";
constexpr double kPpm = 1e-6;

using Parser = Quantity (*)(const std::string& option, const std::string& text);

std::optional<Quantity> parseOne(const char* option, const std::string& text, Parser parser) {
    return text.empty() ? std::nullopt : std::optional(parser(option, text));
}

bool isAbove(double value, const std::optional<Quantity>& limit) {
    return limit && value > limit->value;
}

bool isAbove(const Occurrences& occurrences, const std::optional<Quantity>& limit) {
    return isAbove(static_cast<double>(occurrences.count), limit);
}

std::string describe(const Occurrences& occurrences, const char* what, const std::string& column) {
    return fmt::format("{} {} in {}, first in row {}", occurrences.count, what, column,
                       occurrences.firstRow);
}

}  // namespace

void TimeLimits::define(CLI::App& app) {
    const auto add = [&](const char* option, std::string& text, const char* type,
                         const char* description) {
        app.add_option(option, text, description)
            ->type_name(type)
            ->check([](const std::string& value) {
                return value.empty() ? std::string("no limit is given") : std::string();
            });
    };
    add(kLoss, texts_.loss, "SHARE", "Lost rows by a counter, as 0.1% or 50ppm");
    add(kJitter, texts_.jitter, "TIME", "Distance of the 1 % and 99 % steps from the median");
    add(kGap, texts_.gap, "TIME", "The longest step, as 50ms");
    add(kDrift, texts_.drift, "SHARE", "Drift against the nominal rate, as 100ppm");
    add(kBackward, texts_.backward, "N", "Backward stamps, and steps of a counter");
    add(kRepeated, texts_.repeated, "N", "Repeated stamps, and numbers of a counter");
}

void TimeLimits::parse(bool hasStamps, bool hasCounters) {
    loss_ = parseOne(kLoss, texts_.loss, &parseRatio);
    jitter_ = parseOne(kJitter, texts_.jitter, &parseDuration);
    gap_ = parseOne(kGap, texts_.gap, &parseDuration);
    drift_ = parseOne(kDrift, texts_.drift, &parseRatio);
    backward_ = parseOne(kBackward, texts_.backward, &parseCount);
    repeated_ = parseOne(kRepeated, texts_.repeated, &parseCount);
    if (loss_ && !hasCounters)
        throw UsageException(std::string(kLoss) +
                             ": no column says that it counts; name one with --counter");
    for (const auto& [option, limit] :
         {std::pair(kJitter, &jitter_), std::pair(kGap, &gap_), std::pair(kDrift, &drift_)})
        if (*limit && !hasStamps)
            throw UsageException(std::string(option) +
                                 ": no column says that it holds time; name one with --time");
}

bool TimeLimits::isAny() const {
    return loss_ || jitter_ || gap_ || drift_ || backward_ || repeated_;
}

std::vector<Violation> TimeLimits::judge(const TimeReport& report) const {
    std::vector<Violation> found;
    if (isAny() && report.rows < 2)
        return {{"rows", "2", fmt::format("{} row(s), too few to judge", report.rows)}};
    for (const CounterReport& counter : report.counters)
        judgeCounter(counter, found);
    if (report.stamps) judgeStamps(*report.stamps, found);
    return found;
}

void TimeLimits::judgeCounter(const CounterReport& counter, std::vector<Violation>& found) const {
    if (isAbove(counter.lossRatio, loss_))
        found.push_back({kLoss, loss_->text,
                         fmt::format("{} lost by {}, {}", counter.lost, counter.column,
                                     describeShare(counter.lossRatio))});
    if (isAbove(counter.backward, backward_))
        found.push_back({kBackward, backward_->text,
                         describe(counter.backward, "backward step(s)", counter.column)});
    if (isAbove(counter.repeated, repeated_))
        found.push_back({kRepeated, repeated_->text,
                         describe(counter.repeated, "repeated number(s)", counter.column)});
}

void TimeLimits::judgeStamps(const StampReport& stamps, std::vector<Violation>& found) const {
    const bool isJudged = jitter_ || gap_ || drift_;
    if (isJudged && stamps.steps == 0)
        found.push_back({"steps", "1", "no stamps that follow each other in " + stamps.column});
    if (isAbove(stamps.jitter, jitter_))
        found.push_back(
            {kJitter, jitter_->text, "the jitter is " + describeDuration(stamps.jitter)});
    if (isAbove(stamps.percentiles.back(), gap_))
        found.push_back(
            {kGap, gap_->text,
             "the longest step is " + describeDuration(stamps.percentiles.back()) +
                 (stamps.gaps.longest ? fmt::format(", to row {}", stamps.gaps.longest->row)
                                      : std::string())});
    if (stamps.steps > 0) judgeDrift(stamps, found);
    if (isAbove(stamps.backward, backward_))
        found.push_back({kBackward, backward_->text,
                         describe(stamps.backward, "backward stamp(s)", stamps.column)});
    if (isAbove(stamps.repeated, repeated_))
        found.push_back({kRepeated, repeated_->text,
                         describe(stamps.repeated, "repeated stamp(s)", stamps.column)});
}

void TimeLimits::judgeDrift(const StampReport& stamps, std::vector<Violation>& found) const {
    if (drift_ && !stamps.drift)
        found.push_back({kDrift, drift_->text, "the drift cannot be told"});
    else if (stamps.drift && isAbove(std::abs(*stamps.drift), drift_))
        found.push_back(
            {kDrift, drift_->text, fmt::format("the drift is {:+.1f} ppm", *stamps.drift / kPpm)});
}

}  // namespace SensorFileTool
