#include "filters/common/CalibOutputs.hpp"

#include <algorithm>
#include <cstddef>

#include <Poco/Exception.h>

using SensorFile::SensorFileConfig;

namespace Filters {

namespace {

std::string aboutCalib(const std::string& name, const std::string& problem) {
    return "Calib data with name : " + name + problem;
}

}  // namespace

Eigen::MatrixXd calibMatrix(const SensorFileConfig::CalibDataBase& record) {
    using Doubles = SensorFileConfig::CalibData<Eigen::MatrixXd>;
    using Integers = SensorFileConfig::CalibData<Eigen::MatrixXi>;
    if (const auto* doubles = dynamic_cast<const Doubles*>(&record)) return doubles->getMatrix();
    if (const auto* integers = dynamic_cast<const Integers*>(&record))
        return integers->getMatrix().cast<double>();
    throw Poco::DataException("Data type format is not supported!");
}

MatrixOutputPins makeCalibPins(Quoril::Core::Filter& filter, const SensorFileConfig& config) {
    MatrixOutputPins pins;
    for (std::size_t i = 0; i < config.getCalibCount(); ++i) {
        pins.push_back(std::make_unique<MatrixOutputPin>(config.getCalibName(i), &filter));
        pins.back()->getValue() = calibMatrix(config.getCalibData(i));
    }
    return pins;
}

MatrixOutputPins makeNamedPins(Quoril::Core::Filter& filter,
                               const std::vector<std::string>& names) {
    MatrixOutputPins pins;
    for (const std::string& name : names)
        pins.push_back(std::make_unique<MatrixOutputPin>(name, &filter));
    return pins;
}

bool hasCalibs(const SensorFileConfig& config, const std::vector<std::string>& names) {
    return std::all_of(names.begin(), names.end(),
                       [&](const std::string& name) { return config.findCalibData(name) >= 0; });
}

void publishCalibration(const SensorFileConfig& config, const std::vector<std::string>& names,
                        const MatrixOutputPins& pins) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        const int record = config.findCalibData(names[i]);
        if (record < 0)
            throw Poco::DataException(aboutCalib(names[i], ", cannot be found in file!"));
        if (i >= pins.size())
            throw Poco::DataException(aboutCalib(names[i], ", cannot be created has output pin!"));
        if (pins[i]->getName() != names[i])
            throw Poco::DataException("Error, Calib pin has unexpected name! Name found: " +
                                      pins[i]->getName());
        pins[i]->getValue() = calibMatrix(config.getCalibData(static_cast<std::size_t>(record)));
    }
}

void sendAll(const MatrixOutputPins& pins, double timeStamp) {
    for (const auto& pin : pins)
        pin->push(timeStamp);
}

}  // namespace Filters
