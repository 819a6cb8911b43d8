#include "tools/statistics/StatsAnalysis.hpp"

#include "sensorfile/ColumnType.hpp"
#include "tools/recording/RecordingInfo.hpp"
#include "tools/recording/RowReader.hpp"

#include <cmath>
#include <utility>

namespace SensorFileTool {

namespace {

/// The Allan deviation of a column, whose first value becomes 0: sums of the others stay small.
class AllanSeries {
 public:
    explicit AllanSeries(std::size_t column) : column_(column) {}

    void add(const Row& row) {
        const double value = row.getValue(column_);
        if (!std::isfinite(value)) {
            ++leftOut_;
            return;
        }
        if (deviation_.getCount() == 0) {
            origin_ = value;
            originBits_ = row.getBits(column_);
        }
        const bool isSigned = row.getTypeCode(column_) == SensorFile::kInt64;
        deviation_.add(row.isWide(column_)
                           ? distanceBetween(originBits_, row.getBits(column_), isSigned)
                           : value - origin_);
    }

    [[nodiscard]] AllanReport report(const SensorFile::SensorFileConfig& config,
                                     double rate) const {
        AllanReport report;
        report.column = config.getColumn(column_).getName();
        report.leftOut = leftOut_;
        report.points = deviation_.getPoints(rate);
        report.noise = estimateNoise(report.points);
        return report;
    }

 private:
    std::size_t column_;
    std::uint64_t leftOut_ = 0;
    double origin_ = 0.0;
    std::uint64_t originBits_ = 0;
    AllanDeviation deviation_;
};

}  // namespace

StatsReport analyzeRows(Recording& recording, const StatsSources& sources,
                        std::optional<Calibration>& calibration, Progress& progress) {
    const SensorFile::SensorFileConfig& config =
        calibration ? calibration->getConfig() : recording.getConfig();
    ColumnStatistics statistics(config, sources.columns);
    std::vector<AllanSeries> series(sources.allan.begin(), sources.allan.end());
    StatsReport report;
    RowReader rows(recording);
    std::uint64_t number = skipToRow(sources.range.first, recording, rows);
    report.firstRow = number;
    bool areMore = true;
    for (; areMore && number < sources.range.last; ++number) {
        areMore = rows.next();
        if (!areMore) break;
        const Row& row = calibration ? calibration->apply(rows.row()) : rows.row();
        if (number == report.firstRow) report.first = row;
        statistics.add(row, number);
        for (AllanSeries& one : series)
            one.add(row);
        if (!calibration) rows.exchangeRow(report.last);
        progress.show(static_cast<std::uint64_t>(recording.getReader().position()));
    }
    report.path = recording.getName();
    report.rows = number - report.firstRow;
    report.isCalibrated = calibration.has_value();
    report.isToTheEnd = !areMore;
    report.rate = sources.rate;
    if (calibration && report.rows > 0) report.last = calibration->last();
    report.columns = statistics.summarize();
    report.least = statistics.getLeast();
    report.greatest = statistics.getGreatest();
    for (const AllanSeries& one : series)
        report.allan.push_back(one.report(config, sources.rate));
    return report;
}

}  // namespace SensorFileTool
