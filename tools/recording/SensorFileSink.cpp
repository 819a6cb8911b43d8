#include "tools/recording/SensorFileSink.hpp"

namespace SensorFileTool {

SensorFileSink::SensorFileSink(const std::string& path, const SensorFile::SensorFileConfig& config,
                               bool binary) {
    writer_.open(path, config, binary, /*writeHeaders=*/true);
    writer_.setTextRowsWaiting(true);
}

}  // namespace SensorFileTool
