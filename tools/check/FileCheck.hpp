#pragma once

#include "tools/check/BinaryRowCheck.hpp"
#include "tools/check/DefectList.hpp"
#include "tools/common/Console.hpp"
#include "tools/common/InputFile.hpp"
#include "tools/recording/Recording.hpp"

#include <cstddef>
#include <cstdint>
#include <string>

namespace SensorFileTool {

struct CheckOptions {
    EncodingChoice encoding;
    std::string counter;   ///< a column's name; empty: by their names
    std::string time;      ///< as counter
    std::string timeUnit;  ///< "s", "ms", "us", "ns"; empty: by the name
    bool isKivra2Calib = false;
    std::size_t maxPerCode = 10;  ///< defects of one code that are kept
};

/// What was found out about a file.
struct CheckReport {
    explicit CheckReport(std::size_t maxPerCode) : defects(maxPerCode) {}

    std::string name;
    std::string kind;       ///< "recording", "calibration" or "kivra2-calibration"
    std::string encoding;   ///< "binary" or "text"
    std::string byteOrder;  ///< "big" or "little"; empty for text
    std::int64_t size = 0;  ///< bytes
    std::int64_t rows = 0;  ///< of text all lines that are meant as rows
    SectionMap map;
    ZeroTail zeroTail;
    DefectList defects;
};

/// Looks at everything in a file.
/// @throws Poco::FileException (or one derived) naming the file, if it cannot be read
/// @throws Poco::DataException naming the file, if it is no sensor file
/// @throws UsageException if a column that the user named is not there
[[nodiscard]] CheckReport checkFile(const Console& console, const InputFile& input,
                                    const CheckOptions& options);

}  // namespace SensorFileTool
