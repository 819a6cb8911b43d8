#include "tools/info/InfoJson.hpp"

#include "tools/common/Json.hpp"
#include "tools/recording/CalibRecords.hpp"

#include <Poco/DateTimeFormatter.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr const char* kSchema = "sensorfile-info-1";
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
            values.push_back(jsonNumber(matrix(row, col)));
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
            {"frequency_hz", jsonNumber(config.getSampleFrequency())}};
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
    for (const MeasuredRate& rate : rates) {
        Json one{{"column", rate.column}, {"rate_hz", rate.hertz}};
        if (rate.isByCounter) {
            one["missing_rows"] = jsonInteger(rate.missing);
        } else {
            one["first_s"] = rate.firstStamp;
            one["last_s"] = rate.lastStamp;
        }
        list.push_back(one);
    }
    return list;
}

}  // namespace

std::string recordingToJson(const Recording& recording, const RowCount& count,
                            const std::vector<MeasuredRate>& rates) {
    const SensorFile::SensorFileConfig& config = recording.getConfig();
    Json json{{"schema", kSchema},
              {"path", recording.getName()},
              {"kind", config.isCalibOnly() ? "calibration" : "recording"},
              {"encoding", recording.isBinary() ? "binary" : "text"},
              {"byte_order", nullptr},
              {"calibration_only", config.isCalibOnly()},
              {"header", headerOf(config)},
              {"columns", columnsOf(config)},
              {"calibration", calibrationOf(config)},
              {"rows", jsonInteger(count.rows)},
              {"trailing_values", jsonInteger(count.rest.valueCount)},
              {"trailing_bytes", count.rest.size},
              {"size_bytes", jsonInteger(static_cast<std::uint64_t>(recording.getSize()))},
              {"measured", ratesOf(rates)}};
    if (recording.isBinary()) json["byte_order"] = config.isBigEndian() ? "big" : "little";
    return jsonLine(json);
}

std::string calibToJson(const std::string& name, const CalibSource& calib) {
    Json json{{"schema", "sensorfile-calib-1"},
              {"path", name},
              {"created", nullptr},
              {"format", calib.format},
              {"records", recordList(calib.records)}};
    if (calib.time != SensorFile::SensorFileConfig::zeroTime()) json["created"] = date(calib.time);
    return jsonLine(json);
}

std::string kivra2CalibToJson(const std::string& path, const SensorFile::Kivra2Calib& calib) {
    return jsonLine({{"schema", kSchema},
                     {"path", path},
                     {"kind", "kivra2-calibration"},
                     {"encoding", "binary"},
                     {"byte_order", "big"},
                     {"created", describeDate(calib.date)},
                     {"version", calib.version},
                     {"records", recordList(listRecords(calib))}});
}

}  // namespace SensorFileTool
