#pragma once

#include <cstdint>
#include <string_view>

namespace SensorFileTool {

/// What the text of a field stands for.
struct CsvNumber {
    enum class Kind {
        kBlank,
        kInteger,  ///< of digits alone, and not -0, within the magnitude of 64 bits
        kReal,     ///< any other number: with a point or an exponent, longer, nan, inf
        kWord,     ///< true or false, in any case: 1 or 0
        kText,     ///< no number
    };

    Kind kind = Kind::kBlank;
    bool isNegative = false;      ///< of integers
    std::uint64_t magnitude = 0;  ///< of integers and words
    int decimals = 0;  ///< of other numbers: digits behind the point, written without exponent
};

/// How fields are to be read.
struct CsvNumberStyle {
    bool hasDecimalComma = false;  ///< "1,5" is a number, and "1.5" is none
};

/// Looks at a field: an optional sign, digits with or without a point, an optional exponent;
/// "nan", "inf", "infinity", "true", "false" in any case. Costs no more than looking at the
/// characters.
[[nodiscard]] CsvNumber scanNumber(std::string_view text, const CsvNumberStyle& style);

/// Reads a field as a double, rounded correctly.
/// @return false if it is no number, blank, or too large for a double
[[nodiscard]] bool readDouble(std::string_view text, const CsvNumberStyle& style, double& value);
/// The same, rounded once to single precision.
[[nodiscard]] bool readFloat(std::string_view text, const CsvNumberStyle& style, float& value);

}  // namespace SensorFileTool
