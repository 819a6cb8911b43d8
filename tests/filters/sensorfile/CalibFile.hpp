#pragma once

#include "filters/common/CalibOutputs.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include <Eigen/Core>
#include <Poco/HexBinaryDecoder.h>

namespace Support {

/// What a file says of itself; closes it again.
inline SensorFile::SensorFileConfig readConfig(const std::string& path, bool binary) {
    SensorFile::SensorFileReader reader;
    reader.open(path, binary);
    return reader.getConfig();
}

/// A file without samples.
inline void writeConfig(const std::string& path, const SensorFile::SensorFileConfig& config,
                        bool binary) {
    SensorFile::SensorFileWriter writer;
    writer.open(path, config, binary, /*writeHeaders=*/true);
    writer.close();
}

inline std::vector<std::string> calibNames(const SensorFile::SensorFileConfig& config) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < config.getCalibCount(); ++i)
        names.push_back(config.getCalibName(i));
    return names;
}

/// Names of the elements' types, by record.
inline std::vector<std::string> calibTypes(const SensorFile::SensorFileConfig& config) {
    std::vector<std::string> types;
    for (std::size_t i = 0; i < config.getCalibCount(); ++i)
        types.emplace_back(config.getCalibData(i).typeName());
    return types;
}

inline Eigen::MatrixXd calibValue(const SensorFile::SensorFileConfig& config, std::size_t record) {
    return Filters::calibMatrix(config.getCalibData(record));
}

/// Bytes from hexadecimal digits; blanks between them do not matter.
inline std::string fromHex(const std::string& digits) {
    std::istringstream in(digits);
    Poco::HexBinaryDecoder decoder(in);
    return {std::istreambuf_iterator<char>(decoder), std::istreambuf_iterator<char>()};
}

}  // namespace Support
