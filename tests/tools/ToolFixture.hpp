#pragma once

#include "tests/sensorfile/TestSupport.hpp"
#include "tools/recording/Recording.hpp"

#include <memory>
#include <string>

namespace SensorFileTool {

using SensorFile::configOf;
using SensorFile::configOfTypes;

/// A recording whose samples a test gives as they stand in the file.
class ToolTest : public testing::Test {
 protected:
    Recording& open(const SensorFile::SensorFileConfig& config, bool binary,
                    const std::string& samples) {
        file.setContent(SensorFile::openingOf(config, binary) + samples);
        return reopen();
    }
    Recording& openText(const std::vector<int>& typeCodes, const std::string& samples) {
        return open(configOfTypes(typeCodes), false, samples);
    }
    Recording& openBinary(const std::vector<int>& typeCodes, std::string_view hex) {
        return open(configOfTypes(typeCodes), true, SensorFile::bytes(hex));
    }
    Recording& reopen() {
        recording_ = std::make_unique<Recording>(InputFile(file.path()));
        return *recording_;
    }

    SensorFile::TemporaryFile file;

 private:
    std::unique_ptr<Recording> recording_;
};

}  // namespace SensorFileTool
