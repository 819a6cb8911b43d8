#include "filters/common/CalibInputs.hpp"

#include "filters/common/ColumnTypeChoice.hpp"
#include "filters/common/Numbers.hpp"

#include <Poco/Exception.h>

namespace Filters {

bool takeNewest(MatrixInputPin& pin, Eigen::MatrixXd& newest) {
    const bool isLifo = pin.getBuffer().isLifo;
    const MatrixSample* sample = pin.take();
    // Counted beforehand: asking an empty buffer could wait, and a fast writer would never let the
    // loop end.
    unsigned left = pin.getWaitingCount();
    while (left > 0 && pin.fetch()) {
        sample = pin.take();
        --left;
        if (isLifo) break;
    }
    if (sample == nullptr) return false;
    newest = sample->value;
    // The older samples of a LIFO are taken too, rather than cleared: clearing while the writer
    // pushes would lose samples that no counter knows of.
    for (; left > 0 && pin.fetch(); --left)
        pin.take();
    return true;
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
    (void)takeNewest(pins_[index].getPin(), remembered_[index]);
    return remembered_[index];
}

}  // namespace Filters
