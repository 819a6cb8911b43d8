#include "filters/common/CalibInputs.hpp"

#include "filters/common/ColumnTypeChoice.hpp"
#include "filters/common/Numbers.hpp"

#include <algorithm>

#include <Poco/Exception.h>

namespace Filters {

const MatrixSample* takeNewest(MatrixInputPin& pin) {
    const bool isLifo = pin.getBuffer().isLifo;
    const MatrixSample* newest = pin.take();
    // Counted beforehand: asking an empty buffer could wait, and a fast writer would never let the
    // loop end.
    const unsigned waiting = pin.getWaitingCount();
    for (unsigned left = isLifo ? std::min(waiting, 1U) : waiting; left > 0 && pin.fetch(); --left)
        newest = pin.take();
    if (isLifo) pin.getStrategy().clear();
    return newest;
}

void addCalibRecord(SensorFile::SensorFileConfig& config, const std::string& name,
                    unsigned typePosition, const Eigen::MatrixXd& matrix, const char* badTypeText) {
    switch (typePosition) {
        case 0:
            config.addCalibData(name, matrix);
            break;
        case 1:
            config.addCalibData(name, Eigen::MatrixXi(matrix.unaryExpr([](double value) -> int {
                                    return truncateToInt32(value);
                                })));
            break;
        default:
            throw Poco::DataException(badTypeText);
    }
}

CalibInputs::CalibInputs(Quoril::Core::Filter& filter)
    : pins_(filter, {{"calibInput#", "CalibColNames#", "CalibColTypes#"},
                     calibTypeChoices(),
                     {.size = 1, .isLifo = false}}) {}

void CalibInputs::resize(std::size_t count) {
    pins_.resize(count);
    remembered_.resize(count);
    descriptions_.clear();
}

void CalibInputs::noteDescriptions() {
    descriptions_.clear();
    for (std::size_t i = 0; i < pins_.size(); ++i)
        descriptions_.push_back({pins_[i].getColumnNames().get(), pins_[i].getColumnType().get()});
}

void CalibInputs::addRecords(SensorFile::SensorFileConfig& config, const char* badTypeText) {
    for (std::size_t i = 0; i < descriptions_.size(); ++i) {
        if (!pins_[i].isConnected()) continue;
        const Eigen::MatrixXd& matrix = newestMatrix(i);
        if (matrix.size() == 0) continue;
        addCalibRecord(config, descriptions_[i].name, descriptions_[i].typePosition, matrix,
                       badTypeText);
    }
}

const Eigen::MatrixXd& CalibInputs::newestMatrix(std::size_t index) {
    if (const MatrixSample* sample = takeNewest(pins_[index].getPin()))
        remembered_[index] = sample->value;
    return remembered_[index];
}

}  // namespace Filters
