#include "tools/parts/ConfigDifference.hpp"

#include "tools/recording/CalibRecords.hpp"

#include <algorithm>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

using SensorFile::SensorFileConfig;

std::string describe(const SensorFileConfig& config, std::size_t index) {
    if (index >= config.getColumnCount()) return "missing";
    const SensorFile::Column& column = config.getColumn(index);
    return fmt::format("{} ({})", column.getName(), column.getTypeName());
}

/// NaN is equal to NaN: the same record.
bool isSame(const Eigen::MatrixXd& one, const Eigen::MatrixXd& other) {
    if (one.rows() != other.rows() || one.cols() != other.cols()) return false;
    return std::equal(one.data(), one.data() + one.size(), other.data(),
                      [](double a, double b) { return a == b || (a != a && b != b); });
}

}  // namespace

std::string findColumnDifference(const SensorFileConfig& one, const SensorFileConfig& other) {
    const std::size_t count = std::max(one.getColumnCount(), other.getColumnCount());
    for (std::size_t i = 0; i < count; ++i) {
        const std::string here = describe(one, i);
        const std::string there = describe(other, i);
        if (here != there) return fmt::format("column {} is {} there, {} here", i + 1, there, here);
    }
    return "";
}

std::string findSetupDifference(const SensorFileConfig& one, const SensorFileConfig& other) {
    if (one.getSampleFrequency() != other.getSampleFrequency())
        return fmt::format("the frequency is {} Hz there, {} Hz here", other.getSampleFrequency(),
                           one.getSampleFrequency());
    const std::vector<CalibRecord> here = listRecords(one);
    const std::vector<CalibRecord> there = listRecords(other);
    if (here.size() != there.size())
        return fmt::format("there are {} calibration record(s) there, {} here", there.size(),
                           here.size());
    for (std::size_t i = 0; i < here.size(); ++i)
        if (here[i].name != there[i].name || !isSame(here[i].matrix, there[i].matrix))
            return fmt::format("calibration record {} differs", there[i].name);
    return "";
}

}  // namespace SensorFileTool
