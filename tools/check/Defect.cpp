#include "tools/check/Defect.hpp"

#include <array>

namespace SensorFileTool {

namespace {

using enum DefectCode;
using enum Severity;

constexpr bool kStructure = true;
constexpr bool kContent = false;

// In the order of the codes.
constexpr std::array<DefectKind, kDefectKindCount> kKinds = {{
    {kCutSection, "cut-section", kError, kStructure},
    {kBadHeader, "bad-header", kError, kStructure},
    {kBadCalibration, "bad-calibration", kError, kStructure},
    {kImpossibleDate, "impossible-date", kError, kStructure},
    {kNoDataSection, "no-data-section", kError, kStructure},
    {kHeaderSize, "header-size", kWarning, kStructure},
    {kColumnSize, "column-size", kWarning, kStructure},
    {kCalibrationSize, "calibration-size", kWarning, kStructure},
    {kJunkBehindCalibration, "junk-behind-calibration", kWarning, kStructure},
    {kSectionBehindCalibration, "section-behind-calibration", kError, kStructure},
    {kUnreadable, "unreadable", kError, kStructure},
    {kTruncatedRow, "truncated-row", kError, kStructure},
    {kTornRow, "torn-row", kError, kStructure},
    {kNulBytes, "nul-bytes", kError, kStructure},
    {kTooFewFields, "too-few-fields", kError, kStructure},
    {kTooManyFields, "too-many-fields", kError, kStructure},
    {kBadField, "bad-field", kError, kStructure},
    {kBlankCharacter, "blank-character", kError, kStructure},
    {kEndlessLine, "endless-line", kError, kStructure},
    {kMissingLineEnd, "missing-line-end", kWarning, kStructure},
    {kMissingTab, "missing-tab", kWarning, kStructure},
    {kCrlf, "crlf", kWarning, kStructure},
    {kEmptyLine, "empty-line", kNote, kStructure},
    {kStrayBlank, "stray-blank", kNote, kStructure},
    {kBytesWithoutColumns, "bytes-without-columns", kError, kStructure},
    {kUnknownVersion, "unknown-version", kWarning, kContent},
    {kZeroDate, "zero-date", kNote, kContent},
    {kFrequency, "frequency", kWarning, kContent},
    {kFrequencyUnset, "frequency-unset", kNote, kContent},
    {kNameEmpty, "name-empty", kWarning, kContent},
    {kNameRepeated, "name-repeated", kWarning, kContent},
    {kNameCharacters, "name-characters", kWarning, kContent},
    {kNameBlank, "name-blank", kNote, kContent},
    {kNameFull, "name-full", kNote, kContent},
    {kNameJunk, "name-junk", kNote, kContent},
    {kCalibrationValue, "calibration-value", kWarning, kContent},
    {kSingularGain, "singular-gain", kWarning, kContent},
    {kSectionInData, "section-in-data", kWarning, kContent},
    {kZeroFilled, "zero-filled", kError, kContent},
    {kZeroRows, "zero-rows", kWarning, kContent},
    {kCharacterColumn, "character-column", kWarning, kContent},
    {kNonFiniteText, "non-finite-text", kWarning, kContent},
    {kNonFinite, "non-finite", kNote, kContent},
    {kOutOfRange, "out-of-range", kWarning, kContent},
    {kClipped, "clipped", kWarning, kContent},
    {kAtLimit, "at-limit", kNote, kContent},
    {kOddBool, "odd-bool", kNote, kContent},
    {kCounterJump, "counter-jump", kWarning, kContent},
    {kCounterRepeat, "counter-repeat", kWarning, kContent},
    {kCounterBackward, "counter-backward", kWarning, kContent},
    {kCounterWrap, "counter-wrap", kWarning, kContent},
    {kCounterRestart, "counter-restart", kWarning, kContent},
    {kTimeRepeat, "time-repeat", kWarning, kContent},
    {kTimeBackward, "time-backward", kWarning, kContent},
    {kDigitsLost, "digits-lost", kWarning, kContent},
}};

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < kKinds.size(); ++i)
        if (static_cast<std::size_t>(kKinds[i].code) != i) return false;
    return true;
}
static_assert(isInOrder());

}  // namespace

const DefectKind& kindOf(DefectCode code) {
    return kKinds[static_cast<std::size_t>(code)];
}

const char* severityName(Severity severity) {
    switch (severity) {
        case kError:
            return "error";
        case kWarning:
            return "warning";
        default:
            return "note";
    }
}

}  // namespace SensorFileTool
