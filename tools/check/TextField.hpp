#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace SensorFileTool {

/// What a field of a text row says.
struct TextField {
    enum class State {
        kGood,
        kBlankCharacter,  ///< a white-space character, which readers skip
        kOutOfRange,      ///< a number that readers take and the column's type does not hold
        kBad,             ///< no value of the column's type
    };

    std::size_t begin = 0;  ///< in its line
    std::size_t size = 0;   ///< without the TAB behind it
    State state = State::kGood;
    bool hasBlanks = false;  ///< around the number
    double value = 0.0;
    std::uint64_t bits = 0;  ///< of 64-bit integers

    /// Whether readers get a value from it that is its own.
    [[nodiscard]] bool isReadable() const {
        return state == State::kGood || state == State::kOutOfRange;
    }
};

/// Finds out what a field says, as readers take it: begin and size stay.
void parseField(int typeCode, std::string_view text, TextField& field);

/// A text without the white space at its ends.
[[nodiscard]] std::string_view withoutBlanks(std::string_view text);

/// Columns of types 2 and 3 are single characters in text.
[[nodiscard]] bool isCharacter(int typeCode);

}  // namespace SensorFileTool
