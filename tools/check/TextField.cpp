#include "tools/check/TextField.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/NumberText.hpp"

#include <limits>
#include <system_error>
#include <utility>

namespace SensorFileTool {

namespace {

using State = TextField::State;

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// A number that is the whole text.
template <typename T>
bool parseNumber(std::string_view text, T& value) {
    const char* const last = text.data() + text.size();
    std::from_chars_result result{};
    if constexpr (std::is_same_v<T, double>)
        result = SensorFile::parseDouble(text.data(), last, value);
    else if constexpr (std::is_same_v<T, float>)
        result = SensorFile::parseFloat(text.data(), last, value);
    else
        result = SensorFile::parseInteger(text.data(), last, value);
    return result.ec == std::errc{} && result.ptr == last;
}

/// @tparam Stored  what the column's type holds
/// @tparam Read  what readers read; larger for numbers of 8 bits
template <typename Stored, typename Read = Stored>
State parseInteger(std::string_view text, TextField& field) {
    Read value{};
    if (!parseNumber(text, value)) return State::kBad;
    field.value = static_cast<double>(value);
    field.bits = static_cast<std::uint64_t>(value);
    // Readers take a minus before an unsigned number as streams do.
    const bool isWrapped = std::is_unsigned_v<Read> && text.front() == '-' && value != 0;
    return isWrapped || !std::in_range<Stored>(value) ? State::kOutOfRange : State::kGood;
}

template <typename T>
State parseFloating(std::string_view text, TextField& field) {
    T value{};
    if (!parseNumber(text, value)) return State::kBad;
    field.value = static_cast<double>(value);
    return State::kGood;
}

State parseCharacter(int typeCode, std::string_view text, TextField& field) {
    if (text.size() != 1) return State::kBad;
    const auto byte = static_cast<unsigned char>(text.front());
    field.value = typeCode == SensorFile::kUChar ? byte : static_cast<signed char>(byte);
    return isBlank(text.front()) ? State::kBlankCharacter : State::kGood;
}

State parseBool(std::string_view text, TextField& field) {
    if (text != "0" && text != "1") return State::kBad;
    field.value = text == "1" ? 1.0 : 0.0;
    return State::kGood;
}

State parseValue(int typeCode, std::string_view text, TextField& field) {
    switch (typeCode) {
        case SensorFile::kUShort:
        case SensorFile::kUInt16:
            return parseInteger<std::uint16_t>(text, field);
        case SensorFile::kShort:
        case SensorFile::kInt16:
            return parseInteger<std::int16_t>(text, field);
        case SensorFile::kUInt8:
            return parseInteger<std::uint8_t, std::uint32_t>(text, field);
        case SensorFile::kInt8:
            return parseInteger<std::int8_t, std::int32_t>(text, field);
        case SensorFile::kUInt32:
            return parseInteger<std::uint32_t>(text, field);
        case SensorFile::kInt32:
            return parseInteger<std::int32_t>(text, field);
        case SensorFile::kUInt64:
            return parseInteger<std::uint64_t>(text, field);
        case SensorFile::kInt64:
            return parseInteger<std::int64_t>(text, field);
        case SensorFile::kFloat:
            return parseFloating<float>(text, field);
        case SensorFile::kDouble:
            return parseFloating<double>(text, field);
        default:
            return parseBool(text, field);
    }
}

}  // namespace

std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

void parseField(int typeCode, std::string_view text, TextField& field) {
    field.hasBlanks = false;
    if (isCharacter(typeCode)) {
        field.state = parseCharacter(typeCode, text, field);
        return;
    }
    const std::string_view number = withoutBlanks(text);
    field.hasBlanks = number.size() != text.size();
    field.state = number.empty() ? State::kBad : parseValue(typeCode, number, field);
}

bool isCharacter(int typeCode) {
    return typeCode == SensorFile::kUChar || typeCode == SensorFile::kChar;
}

}  // namespace SensorFileTool
