#pragma once

#include "tools/Recording.hpp"

#include <iosfwd>
#include <string>
#include <vector>

namespace SensorFileTool {

struct InfoOptions {
    std::vector<std::string> paths;
    EncodingChoice encoding;
    bool isJson = false;
};

/// Tells what is in sensor files and Kivra2 calibration files. A file that cannot be read is told
/// on `errors`, and the others are told all the same.
/// @return kExitDone; kExitProblems if a file ends within a row; kExitFailed if one cannot be read
/// @throws Poco::IOException as requireGood()
int info(const InfoOptions& options, std::ostream& output, std::ostream& errors);

}  // namespace SensorFileTool
