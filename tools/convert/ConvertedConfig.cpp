#include "tools/convert/ConvertedConfig.hpp"

#include "sensorfile/SectionFormat.hpp"
#include "tools/recording/CalibRecords.hpp"

#include <cmath>

#include <Poco/DateTimeFormatter.h>
#include <fmt/format.h>

namespace SensorFileTool {

using SensorFile::SensorFileConfig;

namespace {

SensorFileConfig withoutColumns(const SensorFileConfig& source) {
    SensorFileConfig config = source;
    while (config.getColumnCount() > 0)
        config.removeColumn(config.getColumn(0).getName());
    return config;
}

/// Collects the differences of two headers.
class Comparison {
 public:
    void compare(const std::string& place, const std::string& before, const std::string& after) {
        if (before != after) changes_.push_back({place, before, after});
    }
    void compare(const std::string& place, double before, double after) {
        const bool areNone = std::isnan(before) && std::isnan(after);
        if (before != after && !areNone) compare(place, textOf(before), textOf(after));
    }
    void compare(const std::string& place, const Poco::DateTime& before,
                 const Poco::DateTime& after) {
        compare(place, textOf(before), textOf(after));
    }
    void compareRecords(const CalibRecord& before, const CalibRecord& after) {
        const std::string place = "calibration record " + before.name;
        compare("the name of " + place, before.name, after.name);
        compare("the type of " + place, before.type, after.type);
        compare("the size of " + place, sizeOf(before), sizeOf(after));
        if (sizeOf(before) != sizeOf(after)) return;
        for (Eigen::Index row = 0; row < before.matrix.rows(); ++row)
            for (Eigen::Index col = 0; col < before.matrix.cols(); ++col)
                compare(fmt::format("{}, row {}, column {}", place, row, col),
                        before.matrix(row, col), after.matrix(row, col));
    }
    std::vector<HeaderChange>& getChanges() { return changes_; }

 private:
    static std::string textOf(double value) { return fmt::format("{}", value); }
    static std::string textOf(const Poco::DateTime& time) {
        return Poco::DateTimeFormatter::format(time, "%Y-%m-%dT%H:%M:%SZ");
    }
    static std::string sizeOf(const CalibRecord& record) {
        return fmt::format("{} x {}", record.matrix.rows(), record.matrix.cols());
    }

    std::vector<HeaderChange> changes_;
};

void compareColumns(const SensorFileConfig& meant, const SensorFileConfig& found,
                    Comparison& comparison) {
    comparison.compare("the number of columns", fmt::format("{}", meant.getColumnCount()),
                       fmt::format("{}", found.getColumnCount()));
    if (meant.getColumnCount() != found.getColumnCount()) return;
    for (std::size_t i = 0; i < meant.getColumnCount(); ++i) {
        comparison.compare(fmt::format("the name of column {}", i),
                           "'" + meant.getColumn(i).getName() + "'",
                           "'" + found.getColumn(i).getName() + "'");
        comparison.compare(fmt::format("the type of column {}", i),
                           meant.getColumn(i).getTypeName(), found.getColumn(i).getTypeName());
    }
}

void compareCalibrations(const SensorFileConfig& meant, const SensorFileConfig& found,
                         Comparison& comparison) {
    comparison.compare("the date of the calibration", meant.getCalibTime(), found.getCalibTime());
    comparison.compare("the format of the calibration", meant.getCalibFormat(),
                       found.getCalibFormat());
    comparison.compare("the version of the calibration", meant.getCalibVersion(),
                       found.getCalibVersion());
    const std::vector<CalibRecord> records = listRecords(meant);
    const std::vector<CalibRecord> foundRecords = listRecords(found);
    comparison.compare("the number of calibration records", fmt::format("{}", records.size()),
                       fmt::format("{}", foundRecords.size()));
    if (records.size() != foundRecords.size()) return;
    for (std::size_t i = 0; i < records.size(); ++i)
        comparison.compareRecords(records[i], foundRecords[i]);
}

}  // namespace

SensorFileConfig convertedConfig(const SensorFileConfig& source,
                                 const std::vector<std::size_t>& columns,
                                 const std::vector<int>& types) {
    SensorFileConfig config = withoutColumns(source);
    for (const std::size_t column : columns)
        config.addColumn(source.getColumn(column).getName(), types[column]);
    if (SensorFile::isBareCalibVersion(config.getCalibVersion()))
        config.setCalibVersion(SensorFile::kDefaultCalibVersion);
    // A writer would put the present time there, and the same file come out another every time.
    if (!config.hasCalibTime()) config.setCalibTime(config.getCreationTime());
    return config;
}

SensorFileConfig renamedConfig(const SensorFileConfig& source,
                               const std::vector<std::string>& names) {
    SensorFileConfig config = withoutColumns(source);
    for (std::size_t i = 0; i < names.size(); ++i)
        config.addColumn(names[i], source.getColumn(i).getTypeCode());
    return config;
}

std::vector<HeaderChange> compareHeaders(const SensorFileConfig& meant,
                                         const SensorFileConfig& found) {
    Comparison comparison;
    if (!meant.isCalibOnly()) {
        comparison.compare("the date of creation", meant.getCreationTime(),
                           found.getCreationTime());
        comparison.compare("the frequency", meant.getSampleFrequency(), found.getSampleFrequency());
        comparison.compare("the version of the header", meant.getHeaderVersion(),
                           found.getHeaderVersion());
        compareColumns(meant, found, comparison);
    }
    compareCalibrations(meant, found, comparison);
    return comparison.getChanges();
}

}  // namespace SensorFileTool
