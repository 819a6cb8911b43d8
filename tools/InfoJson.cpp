#include "tools/InfoJson.hpp"

#include "tools/CalibRecords.hpp"

#include <cmath>

#include <Poco/DateTimeFormatter.h>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace SensorFileTool {

using Json = nlohmann::ordered_json;

namespace {

constexpr const char* kSchema = "sensorfile-info-1";
constexpr std::uint64_t kExactIntegers = std::uint64_t{1} << 53;

std::string dump(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

Json number(double value) {
    if (std::isfinite(value)) return value;
    if (std::isnan(value)) return "nan";
    return value > 0.0 ? "inf" : "-inf";
}

Json integer(std::uint64_t value) {
    if (value <= kExactIntegers) return value;
    return std::to_string(value);
}

std::string version(unsigned number) {
    return fmt::format("0x{:04x}", number);
}

std::string date(const Poco::DateTime& time) {
    return Poco::DateTimeFormatter::format(time, "%Y-%m-%dT%H:%M:%SZ");
}

Json matrixRows(const Eigen::MatrixXd& matrix) {
    Json rows = Json::array();
    for (Eigen::Index row = 0; row < matrix.rows(); ++row) {
        Json values = Json::array();
        for (Eigen::Index col = 0; col < matrix.cols(); ++col)
            values.push_back(number(matrix(row, col)));
        rows.push_back(values);
    }
    return rows;
}

Json recordList(const std::vector<CalibRecord>& records) {
    Json list = Json::array();
    for (const CalibRecord& record : records)
        list.push_back({{"name", record.name},
                        {"type", record.type},
                        {"rows", record.matrix.rows()},
                        {"cols", record.matrix.cols()},
                        {"values", matrixRows(record.matrix)}});
    return list;
}

Json headerOf(const SensorFile::SensorFileConfig& config) {
    if (config.isCalibOnly()) return nullptr;
    return {{"version", version(config.getHeaderVersion())},
            {"created", date(config.getCreationTime())},
            {"frequency_hz", number(config.getSampleFrequency())}};
}

Json columnsOf(const SensorFile::SensorFileConfig& config) {
    Json columns = Json::array();
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        const SensorFile::Column& column = config.getColumn(i);
        columns.push_back({{"name", column.getName()},
                           {"type", column.getTypeName()},
                           {"code", column.getTypeCode()},
                           {"size", column.getSize()}});
    }
    return columns;
}

// A recording need not have the section.
Json calibrationOf(const SensorFile::SensorFileConfig& config) {
    if (!config.hasCalibTime()) return nullptr;
    return {{"version", version(config.getCalibVersion())},
            {"format", config.getCalibFormat()},
            {"created", date(config.getCalibTime())},
            {"records", recordList(listRecords(config))}};
}

Json ratesOf(const std::vector<MeasuredRate>& rates) {
    Json list = Json::array();
    for (const MeasuredRate& rate : rates)
        list.push_back({{"column", rate.column},
                        {"rate_hz", rate.hertz},
                        {"first_s", rate.firstStamp},
                        {"last_s", rate.lastStamp}});
    return list;
}

}  // namespace

std::string recordingToJson(const Recording& recording, const RowCount& count,
                            const std::vector<MeasuredRate>& rates) {
    const SensorFile::SensorFileConfig& config = recording.getConfig();
    Json json{{"schema", kSchema},
              {"path", recording.getPath()},
              {"kind", config.isCalibOnly() ? "calibration" : "recording"},
              {"encoding", recording.isBinary() ? "binary" : "text"},
              {"byte_order", nullptr},
              {"calibration_only", config.isCalibOnly()},
              {"header", headerOf(config)},
              {"columns", columnsOf(config)},
              {"calibration", calibrationOf(config)},
              {"rows", integer(count.rows)},
              {"trailing_values", integer(count.rest.valueCount)},
              {"trailing_bytes", count.rest.size},
              {"size_bytes", integer(static_cast<std::uint64_t>(recording.getSize()))},
              {"measured", ratesOf(rates)}};
    if (recording.isBinary()) json["byte_order"] = config.isBigEndian() ? "big" : "little";
    return dump(json);
}

std::string kivra2CalibToJson(const std::string& path, const SensorFile::Kivra2Calib& calib) {
    return dump({{"schema", kSchema},
                 {"path", path},
                 {"kind", "kivra2-calibration"},
                 {"encoding", "binary"},
                 {"byte_order", "big"},
                 {"created", describeDate(calib.date)},
                 {"version", calib.version},
                 {"records", recordList(listRecords(calib))}});
}

}  // namespace SensorFileTool
