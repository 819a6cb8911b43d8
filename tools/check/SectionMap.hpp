#pragma once

#include "sensorfile/SensorFileConfig.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// Bytes of a file's sections that are wrong, and what belongs there.
struct Patch {
    std::int64_t offset = 0;
    std::int64_t size = 0;
    std::string bytes;
    std::string reason;
};

/// Where the sections of a file are and what they say, as far as that can be found out. Offsets
/// are bytes from the start of the file.
struct SectionMap {
    static constexpr std::int64_t kNowhere = -1;

    bool isBinary = false;
    std::int64_t fileSize = 0;
    /// Unreadable dates are the first day of 2000; a damaged calibration has no records.
    SensorFile::SensorFileConfig config;

    std::int64_t headerBody = kNowhere;  ///< behind the opening
    std::int64_t headerEnd = kNowhere;
    bool isHeaderBigEndian = true;
    std::int64_t calibOpening = kNowhere;
    std::int64_t calibBody = kNowhere;
    std::int64_t calibEnd = kNowhere;  ///< nowhere if the section is missing or damaged
    bool isCalibBigEndian = true;      ///< of the section's size
    std::int64_t dataOpening = kNowhere;
    std::int64_t rowStart = kNowhere;  ///< nowhere: there are no rows to be read

    std::vector<Patch> patches;

    [[nodiscard]] bool hasRows() const { return rowStart != kNowhere; }
};

}  // namespace SensorFileTool
