#pragma once

#include "sensorfile/InputBlock.hpp"
#include "tools/check/DefectList.hpp"
#include "tools/check/SectionMap.hpp"

#include <cstdint>
#include <istream>
#include <optional>
#include <string>

namespace SensorFileTool {

/// Finds the sections of a file as its readers do, and goes on where they give up: behind a date
/// that does not exist, and behind a calibration section that cannot be read.
class SectionScan {
 public:
    /// @param path  of a file that begins as a sensor file does
    /// @throws Poco::FileException (or one derived) naming the path
    SectionScan(const std::string& path, bool binary, DefectList& defects);

    /// Once.
    /// @throws Poco::DataException if the file does not open with a header or a calibration
    [[nodiscard]] SectionMap scan();

 private:
    struct Failure {
        std::int64_t offset = 0;
        std::string message;
    };
    struct DatePatch;

    int readId();
    std::optional<Failure> readSection(bool isHeader);
    std::optional<Failure> tryStream(std::istream& stream, bool isHeader);
    std::optional<Failure> readOnce(bool isHeader);
    [[nodiscard]] DatePatch patchDate(bool isHeader, std::int64_t body);
    void tellFailure(const Failure& failure, DefectCode code);
    void scanRecording();
    void scanCalibration();
    void searchData(std::int64_t from, const Failure& failure);
    void findRowStart();
    void lint();
    [[nodiscard]] std::string readBytes(std::int64_t offset, std::int64_t maxSize);
    void seek(std::int64_t offset);

    SensorFile::InputBlock block_;
    std::istream stream_{&block_};
    DefectList& defects_;
    SectionMap map_;
};

}  // namespace SensorFileTool
