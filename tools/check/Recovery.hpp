#pragma once

#include "tools/check/FileCheck.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace SensorFileTool {

/// What becomes of rows of zeros at the end of a binary recording.
enum class ZeroRows {
    kDropProven,  ///< they are dropped if a counter or a time stamp shows that nobody recorded them
    kDrop,
    kKeep,
};

struct RecoverOptions {
    CheckOptions check;
    ZeroRows zeroRows = ZeroRows::kDropProven;
};

/// What is not in the recovered file, all for one reason.
struct Dropped {
    DefectCode code;
    Place first;            ///< where it was
    std::int64_t rows = 0;  ///< begun or whole
    std::int64_t bytes = 0;
    std::string message;  ///< of the first
};

/// What is otherwise in the recovered file.
struct Mended {
    std::string what;
    Place first;
    std::int64_t count = 0;
};

/// What was done with a damaged file.
struct Recovery {
    explicit Recovery(CheckReport report) : before(std::move(report)), after(0) {}

    CheckReport before;    ///< of the damaged file
    CheckReport after;     ///< of the recovered one
    bool isWhole = false;  ///< the file was; it was copied
    std::int64_t rowsKept = 0;
    std::vector<Dropped> dropped;
    std::vector<Mended> mended;

    [[nodiscard]] std::int64_t countDroppedRows() const;
    [[nodiscard]] std::int64_t countDroppedBytes() const;
};

/// Writes what is whole of a file into another one, which is then checked.
/// @param outPath  a file that is overwritten
/// @param outName  its name in messages
/// @throws Poco::DataException naming the file, if it is no sensor file, nothing of it can be had,
///         or the recovered file would have a damaged form after all
/// @throws Poco::FileException (or one derived) naming the path
/// @throws UsageException as checkFile()
[[nodiscard]] Recovery recoverFile(const Console& console, const InputFile& input,
                                   const std::string& outPath, const std::string& outName,
                                   const RecoverOptions& options);

}  // namespace SensorFileTool
