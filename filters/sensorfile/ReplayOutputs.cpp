#include "filters/sensorfile/ReplayOutputs.hpp"

#include <algorithm>

#include <Poco/Exception.h>

using SensorFile::SensorFileConfig;

namespace {

std::vector<std::size_t> findColumns(const SensorFileConfig& config,
                                     const std::vector<std::string>& names) {
    std::vector<std::size_t> indexes(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!config.findColumn(names[i], indexes[i]))
            throw Poco::DataException("Impossible to find one or more ColName(s) in the file");
    }
    return indexes;
}

}  // namespace

void ReplayOutputs::clear() {
    dataPins_.clear();
    calibPins_.clear();
}

void ReplayOutputs::makeDetected(const SensorFileConfig& config,
                                 const std::vector<OutputDescription>& outputs) {
    clear();
    std::size_t column = 0;
    for (const OutputDescription& output : outputs) {
        addData(output.name, column, output.columnCount);
        column += output.columnCount;
    }
    calibPins_ = Filters::makeCalibPins(filter_, config);
}

void ReplayOutputs::makeNamed(const SensorFileConfig& config,
                              const std::vector<std::string>& columns,
                              const std::vector<std::string>& calibs) {
    clear();
    const std::vector<std::size_t> indexes = findColumns(config, columns);
    if (!Filters::hasCalibs(config, calibs))
        throw Poco::DataException("Impossible to find one or more CalibColName(s) in the file");
    for (std::size_t i = 0; i < columns.size(); ++i)
        addData(columns[i], indexes[i], 1);
    calibPins_ = Filters::makeNamedPins(filter_, calibs);
    Filters::publishCalibration(config, calibs, calibPins_);
}

void ReplayOutputs::makeUnbound(const std::vector<std::string>& columns,
                                const std::vector<std::string>& calibs) {
    clear();
    for (const std::string& name : columns)
        addData(name, 0, 1);
    calibPins_ = Filters::makeNamedPins(filter_, calibs);
}

void ReplayOutputs::addData(const std::string& name, std::size_t firstColumn,
                            std::size_t columnCount) {
    dataPins_.push_back({std::make_unique<Filters::MatrixOutputPin>(name, &filter_), firstColumn});
    dataPins_.back().pin->getValue() =
        Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(columnCount), 1);
}

std::optional<std::size_t> ReplayOutputs::findData(const std::string& name) const {
    const auto found = std::find_if(dataPins_.begin(), dataPins_.end(), [&](const DataPin& data) {
        return data.pin->getName() == name;
    });
    if (found == dataPins_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - dataPins_.begin());
}

void ReplayOutputs::fill(std::span<const double> row) {
    for (DataPin& data : dataPins_) {
        Eigen::MatrixXd& value = data.pin->getValue();
        const auto values = row.subspan(data.firstColumn, static_cast<std::size_t>(value.size()));
        std::copy(values.begin(), values.end(), value.data());
    }
}

double ReplayOutputs::firstValue(std::size_t dataPin) const {
    return *dataPins_[dataPin].pin->getSample().value.data();
}

void ReplayOutputs::sendData(double timeStamp) {
    for (const DataPin& data : dataPins_)
        data.pin->push(timeStamp);
}

void ReplayOutputs::sendCalibration(double timeStamp) {
    Filters::sendAll(calibPins_, timeStamp);
}
