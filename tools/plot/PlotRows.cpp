#include "tools/plot/PlotRows.hpp"

#include "tools/recording/RecordingInfo.hpp"

namespace SensorFileTool {

PlotRows::PlotRows(Recording& recording, const RowRange& range, bool isCalibrated,
                   Progress& progress)
    : recording_(recording), range_(range), progress_(progress), rows_(recording) {
    if (isCalibrated) calibration_.emplace(recording.getConfig());
    row_ = &rows_.row();
    nextNumber_ = skipToRow(range_.first, recording_, rows_);
}

const SensorFile::SensorFileConfig& PlotRows::getConfig() const {
    return calibration_ ? calibration_->getConfig() : recording_.getConfig();
}

void PlotRows::restart() {
    readBefore_ += static_cast<std::uint64_t>(recording_.getReader().position());
    recording_.getReader().rewind();
    nextNumber_ = skipToRow(range_.first, recording_, rows_);
}

bool PlotRows::next() {
    if (nextNumber_ >= range_.last) return false;
    if (!rows_.next()) {
        isAtEnd_ = true;
        return false;
    }
    number_ = nextNumber_++;
    row_ = calibration_ ? &calibration_->apply(rows_.row()) : &rows_.row();
    progress_.show(readBefore_ + static_cast<std::uint64_t>(recording_.getReader().position()));
    return true;
}

}  // namespace SensorFileTool
