#pragma once

#include <string>
#include <vector>

namespace Stress {

/// Files for filters to read, good ones and bad ones, in a folder.
struct InputFiles {
    explicit InputFiles(const std::string& folder);

    std::string recording;                ///< Kivra2 layout with gyroscope, binary
    std::string unit;                     ///< calibration of one unit
    std::string calibrations;             ///< calibrations alone, binary
    std::string table;                    ///< CSV with a header
    std::vector<std::string> recordings;  ///< several layouts and encodings
    std::vector<std::string> bad;         ///< what no filter can read
    std::vector<std::string> all;
};

}  // namespace Stress
