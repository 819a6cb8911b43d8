#include "tools/recording/Calibration.hpp"

#include "sensorfile/ColumnType.hpp"
#include "tools/recording/CalibRecords.hpp"

#include <algorithm>
#include <optional>

#include <Poco/Exception.h>
#include <Poco/String.h>

namespace SensorFileTool {

namespace {

using SensorFile::SensorFileConfig;

/// The X, Y and Z columns of a prefix.
std::optional<std::array<std::size_t, 3>> findAxes(const SensorFileConfig& config,
                                                   const std::string& prefix) {
    std::array<std::size_t, 3> columns{};
    for (std::size_t axis = 0; axis < columns.size(); ++axis) {
        const std::string name = prefix + "XYZ"[axis];
        if (!config.findColumn(name, columns[axis])) return std::nullopt;
    }
    return columns;
}

const CalibRecord* findRecord(const std::vector<CalibRecord>& records, const std::string& name,
                              bool isGain) {
    for (const CalibRecord& record : records) {
        const Eigen::Index rows = record.matrix.rows();
        const bool isFit = isGain ? rows == 3 && record.matrix.cols() == 3
                                  : record.matrix.size() == 3 && (rows == 1 || rows == 3);
        if (isFit && Poco::icompare(record.name, name) == 0) return &record;
    }
    return nullptr;
}

/// The axes are doubles from now on.
SensorFileConfig withDoubles(const SensorFileConfig& raw, const std::vector<bool>& isCalibrated) {
    SensorFileConfig config = raw;
    while (config.getColumnCount() > 0)
        config.removeColumn(config.getColumn(0).getName());
    for (std::size_t i = 0; i < raw.getColumnCount(); ++i)
        config.addColumn(raw.getColumn(i).getName(),
                         isCalibrated[i] ? SensorFile::kDouble : raw.getColumn(i).getTypeCode());
    config.clearCalibData();
    return config;
}

}  // namespace

Calibration::Calibration(const SensorFileConfig& raw) {
    findSensors(raw);
    if (sensors_.empty())
        throw Poco::DataException(
            "no calibration records fit the columns: a record such as AccGain (3 x 3) or "
            "AccOffset (1 x 3) needs columns such as ACCX, ACCY, ACCZ");
    std::vector<bool> isCalibrated(raw.getColumnCount());
    for (const Sensor& sensor : sensors_)
        for (const std::size_t column : sensor.columns)
            isCalibrated[column] = true;
    config_ = withDoubles(raw, isCalibrated);
    row_ = Row(config_);
}

void Calibration::findSensors(const SensorFileConfig& raw) {
    const std::vector<CalibRecord> records = listRecords(raw);
    for (std::size_t i = 0; i < raw.getColumnCount(); ++i) {
        const std::string& name = raw.getColumn(i).getName();
        if (name.size() < 2 || name.back() != 'X') continue;
        Sensor sensor;
        sensor.prefix = name.substr(0, name.size() - 1);
        const auto axes = findAxes(raw, sensor.prefix);
        const CalibRecord* const gain = findRecord(records, sensor.prefix + "Gain", true);
        const CalibRecord* const offset = findRecord(records, sensor.prefix + "Offset", false);
        if (!axes || (gain == nullptr && offset == nullptr)) continue;
        sensor.columns = *axes;
        if (gain != nullptr) sensor.gain = gain->matrix;
        if (offset != nullptr)
            sensor.offset = Eigen::Map<const Eigen::Vector3d>(offset->matrix.data());
        sensors_.push_back(sensor);
    }
}

std::vector<std::string> Calibration::getSensors() const {
    std::vector<std::string> prefixes;
    std::transform(sensors_.begin(), sensors_.end(), std::back_inserter(prefixes),
                   [](const Sensor& sensor) { return sensor.prefix; });
    return prefixes;
}

const Row& Calibration::apply(const Row& raw) {
    std::copy(raw.values().begin(), raw.values().end(), row_.values().begin());
    std::copy(raw.bits().begin(), raw.bits().end(), row_.bits().begin());
    for (const Sensor& sensor : sensors_) {
        const auto& [x, y, z] = sensor.columns;
        const Eigen::Vector3d value(raw.getValue(x), raw.getValue(y), raw.getValue(z));
        const Eigen::Vector3d calibrated = sensor.gain * (value - sensor.offset);
        for (std::size_t axis = 0; axis < sensor.columns.size(); ++axis)
            row_.setValue(sensor.columns[axis], calibrated[static_cast<Eigen::Index>(axis)]);
    }
    return row_;
}

}  // namespace SensorFileTool
