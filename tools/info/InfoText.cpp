#include "tools/info/InfoText.hpp"

#include "text/VisibleText.hpp"
#include "tools/recording/CalibRecords.hpp"

#include <algorithm>

#include <Poco/DateTimeFormatter.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

std::string date(const Poco::DateTime& time) {
    return Poco::DateTimeFormatter::format(time, "%Y-%m-%d %H:%M:%S UTC");
}

std::string line(const char* label, const std::string& text) {
    return fmt::format("  {:<13}{}\n", label, Texts::toVisible(text));
}

std::string describeEncoding(const Recording& recording) {
    if (!recording.isBinary()) return "text";
    return recording.getConfig().isBigEndian() ? "binary, big-endian" : "binary, little-endian";
}

std::string describeRows(const Recording& recording, const RowCount& count) {
    const double frequency = recording.getConfig().getSampleFrequency();
    std::string text = fmt::format("{}", count.rows);
    if (frequency > 0.0)
        text += fmt::format(", {:.6g} s at {} Hz", static_cast<double>(count.rows) / frequency,
                            frequency);
    return text;
}

std::string describeRate(const MeasuredRate& rate) {
    const std::string text = fmt::format("{:.6g} Hz by {}, ", rate.hertz, rate.column);
    if (!rate.isByCounter)
        return text + fmt::format("from {} s to {} s", rate.firstStamp, rate.lastStamp);
    if (rate.missing == 0) return text + "no row missing";
    return text + fmt::format("{} row(s) missing", rate.missing);
}

std::string describeColumns(const SensorFile::SensorFileConfig& config) {
    std::size_t width = 0;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        width = std::max(width, Texts::toVisible(config.getColumn(i).getName()).size());
    std::string text = line("columns", fmt::format("{}", config.getColumnCount()));
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        text += fmt::format("    {:<{}}  {}, {} byte(s)\n",
                            Texts::toVisible(config.getColumn(i).getName()), width,
                            config.getColumn(i).getTypeName(), config.getColumn(i).getSize());
    return text;
}

std::string describeVersions(const SensorFile::SensorFileConfig& config) {
    std::string text;
    if (!config.isCalibOnly())
        text = fmt::format("header 0x{:04x}, data 0x{:04x}", config.getHeaderVersion(),
                           config.getDataVersion());
    if (config.hasCalibTime())
        text += fmt::format("{}calibration 0x{:04x}", text.empty() ? "" : ", ",
                            config.getCalibVersion());
    return text;
}

std::string describeRecords(const std::vector<CalibRecord>& records) {
    std::string text;
    for (const CalibRecord& record : records) {
        const Eigen::MatrixXd& matrix = record.matrix;
        text += fmt::format("    {}  {} {} x {}\n", Texts::toVisible(record.name), record.type,
                            matrix.rows(), matrix.cols());
        for (Eigen::Index row = 0; row < matrix.rows(); ++row) {
            text += "     ";
            for (Eigen::Index col = 0; col < matrix.cols(); ++col)
                text += fmt::format(" {}", matrix(row, col));
            text += '\n';
        }
    }
    return text;
}

std::string describeCalibration(const SensorFile::SensorFileConfig& config) {
    if (!config.hasCalibTime()) return line("calibration", "none");
    return line("calibration", fmt::format("{} record(s), format {}, {}", config.getCalibCount(),
                                           config.getCalibFormat(), date(config.getCalibTime()))) +
           describeRecords(listRecords(config));
}

}  // namespace

std::string recordingToText(const Recording& recording, const RowCount& count,
                            const std::vector<MeasuredRate>& rates) {
    const SensorFile::SensorFileConfig& config = recording.getConfig();
    std::string text = Texts::toVisible(recording.getName()) + '\n' +
                       line("encoding", describeEncoding(recording)) +
                       line("versions", describeVersions(config));
    if (config.isCalibOnly()) {
        text += line("kind", "calibration without samples");
    } else {
        text += line("created", date(config.getCreationTime()));
        text += line("frequency", fmt::format("{} Hz", config.getSampleFrequency()));
        text += line("rows", describeRows(recording, count));
    }
    for (const MeasuredRate& rate : rates)
        text += line("measured", describeRate(rate));
    text += line("size", fmt::format("{} bytes", recording.getSize()));
    if (count.rest.size > 0) text += line("cut", count.rest.describe());
    if (!config.isCalibOnly()) text += describeColumns(config);
    return text + describeCalibration(config);
}

std::string calibToText(const std::string& name, const CalibSource& calib) {
    const bool hasTime = calib.time != SensorFile::SensorFileConfig::zeroTime();
    return Texts::toVisible(name) + '\n' + line("created", hasTime ? date(calib.time) : "unknown") +
           line("format", fmt::format("{}", calib.format)) +
           line("records", fmt::format("{}", calib.records.size())) +
           describeRecords(calib.records);
}

std::string kivra2CalibToText(const std::string& path, const SensorFile::Kivra2Calib& calib) {
    return Texts::toVisible(path) + '\n' + line("kind", "Kivra2 calibration, by its size") +
           line("created", describeDate(calib.date)) +
           line("version", fmt::format("{}", calib.version)) + describeRecords(listRecords(calib));
}

}  // namespace SensorFileTool
