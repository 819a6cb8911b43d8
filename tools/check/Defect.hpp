#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace SensorFileTool {

enum class Severity {
    kNote,     ///< worth knowing; nothing is wrong
    kWarning,  ///< readable, but perhaps not what was recorded
    kError,    ///< data are lost, or readers stop or go wrong here
};

/// What can be wrong with a file. docs/tool/check.md tells what to do about each.
enum class DefectCode : std::size_t {
    // The sections.
    kCutSection,
    kBadHeader,
    kBadCalibration,
    kImpossibleDate,
    kNoDataSection,
    kHeaderSize,
    kColumnSize,
    kCalibrationSize,
    kJunkBehindCalibration,
    kSectionBehindCalibration,
    kUnreadable,
    // The rows.
    kTruncatedRow,
    kTornRow,
    kNulBytes,
    kTooFewFields,
    kTooManyFields,
    kBadField,
    kBlankCharacter,
    kEndlessLine,
    kMissingLineEnd,
    kMissingTab,
    kCrlf,
    kEmptyLine,
    kStrayBlank,
    kBytesWithoutColumns,
    // What the sections say.
    kUnknownVersion,
    kZeroDate,
    kFrequency,
    kFrequencyUnset,
    kNameEmpty,
    kNameRepeated,
    kNameCharacters,
    kNameBlank,
    kNameFull,
    kNameJunk,
    kCalibrationValue,
    kSingularGain,
    // What the rows say.
    kSectionInData,
    kZeroFilled,
    kZeroRows,
    kCharacterColumn,
    kNonFiniteText,
    kNonFinite,
    kOutOfRange,
    kClipped,
    kAtLimit,
    kOddBool,
    kCounterJump,
    kCounterRepeat,
    kCounterBackward,
    kCounterWrap,
    kCounterRestart,
    kTimeRepeat,
    kTimeBackward,
    kDigitsLost,
};

/// What holds for every defect of a code.
struct DefectKind {
    DefectCode code;
    const char* name;  ///< stable: scripts look for it
    Severity severity;
    bool isStructure;  ///< of the file's form; otherwise of what it says
};

inline constexpr std::size_t kDefectKindCount =
    static_cast<std::size_t>(DefectCode::kDigitsLost) + 1;

[[nodiscard]] const DefectKind& kindOf(DefectCode code);
/// "note", "warning" or "error".
[[nodiscard]] const char* severityName(Severity severity);

/// Where a defect is.
struct Place {
    static constexpr std::int64_t kNoRow = -1;

    std::int64_t offset = 0;    ///< bytes from the start of the file
    std::int64_t row = kNoRow;  ///< from 0
};

struct Defect {
    DefectCode code;
    Place place;
    std::string column;  ///< empty: of no single column
    std::string message;
};

}  // namespace SensorFileTool
