#pragma once

#include "tools/common/InputFile.hpp"

namespace SensorFileTool {

/// What a file is, as its first bytes and its size tell.
enum class FileKind {
    kBinary,       ///< a sensor file in the binary encoding, of either byte order
    kText,         ///< a sensor file in the text encoding
    kKivra2Calib,  ///< the calibration of a Kivra2 unit: told by its size alone
    kUnknown,
};

/// @throws Poco::FileException (or one derived) naming the path, if it cannot be read
[[nodiscard]] FileKind detectKind(const InputFile& input);

}  // namespace SensorFileTool
