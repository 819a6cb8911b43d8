#pragma once

#include "sensorfile/SensorFileWriter.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <algorithm>
#include <string>
#include <vector>

namespace SensorFile {

/// A writer on a file of its own, opened with the headers written.
class WriterTest : public testing::Test {
 protected:
    void open(const SensorFileConfig& config, bool binary) {
        opening_ = openingOf(config, binary);
        writer.open(file.path(), config, binary, /*writeHeaders=*/true);
    }
    void openText(const std::vector<int>& typeCodes) { open(configOfTypes(typeCodes), false); }
    void openBinary(const std::vector<int>& typeCodes) { open(configOfTypes(typeCodes), true); }

    /// What lies in the file behind the sections.
    [[nodiscard]] std::string samples() const {
        const std::string content = file.content();
        EXPECT_EQ(content.substr(0, opening_.size()), opening_);
        return content.substr(std::min(content.size(), opening_.size()));
    }
    std::string closedSamples() {
        writer.close();
        return samples();
    }
    template <typename T>
    std::string textOf(int typeCode, T value) {
        openText({typeCode});
        writer.write(value);
        std::string text = closedSamples();
        EXPECT_EQ(text.substr(text.size() - 2), "\t\n");
        return text.substr(0, text.size() - 2);
    }
    template <typename T>
    std::string bytesOf(int typeCode, T value) {
        openBinary({typeCode});
        writer.write(value);
        return hexOf(closedSamples());
    }

    FakeClock clock;
    TemporaryFile file;
    SensorFileWriter writer;

 private:
    std::string opening_;
};

}  // namespace SensorFile
