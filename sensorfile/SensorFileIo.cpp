#include "sensorfile/SensorFileIo.hpp"

namespace SensorFile {

void SensorFileIo::startSamples() {
    columnCount_ = static_cast<std::uint32_t>(config_.getColumnCount());
    const std::uint32_t count = valueCount();
    column_ = columnCount_ == 0 ? 0 : count % columnCount_;
    valueCount_ = count - column_;
}

void SensorFileIo::resetState() {
    config_ = SensorFileConfig();
    valueCount_ = 0;
    column_ = 0;
    isOpen_ = false;
    areHeadersValid_ = false;
    startSamples();
}

}  // namespace SensorFile
