#include "tools/convert/RowConversion.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/ValueCast.hpp"
#include "tools/recording/ValueText.hpp"

#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

#include <Poco/Exception.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

using SensorFile::fitCast;

constexpr const char* kDecimalsAdvice = "--precision sets the decimals of text";
/// Stands for what is no character in text: a blank would be skipped, and every value behind it
/// would be taken for its neighbour.
constexpr char kNoCharacter = '?';

bool isByteType(int type) {
    return type == SensorFile::kUInt8 || type == SensorFile::kInt8;
}
bool isCharacterType(int type) {
    return type == SensorFile::kUChar || type == SensorFile::kChar;
}
bool isFloatingType(int type) {
    return type == SensorFile::kFloat || type == SensorFile::kDouble;
}
bool isBlank(double character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

/// Whether a conversion kept the number.
template <typename Source, typename Target>
bool isSame(Source before, Target after) {
    if constexpr (std::is_same_v<Target, bool>) {
        return before == static_cast<Source>(after);
    } else if constexpr (std::is_integral_v<Source> && std::is_integral_v<Target>) {
        return std::cmp_equal(before, after);
    } else if constexpr (std::is_integral_v<Source>) {
        // Rounding may have led beyond all integers.
        const double limit = std::ldexp(1.0, std::numeric_limits<Source>::digits);
        const double number{after};
        return number < limit && static_cast<Source>(number) == before;
    } else {
        return static_cast<double>(after) == before || (std::isnan(before) && std::isnan(after));
    }
}

/// False if the value changed.
template <typename Target, typename Source>
bool put(Row& row, std::size_t column, Source value) {
    const auto converted = fitCast<Target>(value);
    if constexpr (std::is_integral_v<Target> && sizeof(Target) == sizeof(std::uint64_t)) {
        row.setBits(column, static_cast<std::uint64_t>(converted));
    } else {
        row.setValue(column, static_cast<double>(converted));
    }
    if constexpr (std::is_same_v<Target, float>) {
        return isSame(value, double{converted});
    } else {
        return isSame(value, converted);
    }
}

template <typename Source>
bool putAs(int type, Row& row, std::size_t column, Source value) {
    switch (type) {
        case SensorFile::kUChar:
        case SensorFile::kUInt8:
            return put<std::uint8_t>(row, column, value);
        case SensorFile::kChar:
        case SensorFile::kInt8:
            return put<std::int8_t>(row, column, value);
        case SensorFile::kUShort:
        case SensorFile::kUInt16:
            return put<std::uint16_t>(row, column, value);
        case SensorFile::kShort:
        case SensorFile::kInt16:
            return put<std::int16_t>(row, column, value);
        case SensorFile::kUInt32:
            return put<std::uint32_t>(row, column, value);
        case SensorFile::kInt32:
            return put<std::int32_t>(row, column, value);
        case SensorFile::kUInt64:
            return put<std::uint64_t>(row, column, value);
        case SensorFile::kInt64:
            return put<std::int64_t>(row, column, value);
        case SensorFile::kFloat:
            return put<float>(row, column, value);
        case SensorFile::kBool:
            return put<bool>(row, column, value);
        default:
            return put<double>(row, column, value);
    }
}

bool putFrom(const Row& source, std::size_t from, Row& row, std::size_t column) {
    const int type = row.getTypeCode(column);
    switch (source.getTypeCode(from)) {
        case SensorFile::kUInt64:
            return putAs(type, row, column, source.getBits(from));
        case SensorFile::kInt64:
            return putAs(type, row, column, std::bit_cast<std::int64_t>(source.getBits(from)));
        default:
            return putAs(type, row, column, source.getValue(from));
    }
}

}  // namespace

RowConversion::RowConversion(const SensorFile::SensorFileConfig& source,
                             std::vector<std::size_t> columns,
                             const SensorFile::SensorFileConfig& target, Files files,
                             ChangeLog& changes)
    : columns_(std::move(columns)),
      decimals_(target.getDoublePrecision()),
      changes_(changes),
      row_(target) {
    for (std::size_t i = 0; i < target.getColumnCount(); ++i)
        names_.push_back(target.getColumn(i).getName());
    plan(source, files);
}

void RowConversion::plan(const SensorFile::SensorFileConfig& source, Files files) {
    isPassedOn_ = columns_.size() == source.getColumnCount();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const int from = source.getColumn(columns_[i]).getTypeCode();
        const int to = row_.getTypeCode(i);
        isPassedOn_ = isPassedOn_ && columns_[i] == i;
        if (from != to)
            steps_.push_back({StepKind::kType, i});
        else if (files.isFromText && isByteType(to))
            steps_.push_back({StepKind::kByte, i});
        if (files.isToText && isCharacterType(to)) steps_.push_back({StepKind::kCharacter, i});
        if (files.isToText && isFloatingType(to)) decimalColumns_.push_back(i);
    }
    isPassedOn_ = isPassedOn_ && steps_.empty();
}

const Row& RowConversion::convert(const Row& source, std::uint64_t number) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        row_.values()[i] = source.getValue(columns_[i]);
        row_.bits()[i] = source.getBits(columns_[i]);
    }
    for (const Step& step : steps_)
        takeStep(step, source, number);
    return row_;
}

void RowConversion::takeStep(const Step& step, const Row& source, std::uint64_t number) {
    const std::size_t column = step.column;
    const double before = row_.getValue(column);
    const bool isKept = step.kind == StepKind::kByte        ? keepByte(column)
                        : step.kind == StepKind::kCharacter ? keepCharacter(column)
                                                            : changeType(source, column, number);
    if (isKept) return;
    if (changes_.isFirstKnown()) {
        changes_.addFurther();
    } else if (step.kind == StepKind::kType) {
        changes_.add(placeOf(column, number), valueText(source, columns_[column]),
                     valueText(row_, column), "");
    } else if (step.kind == StepKind::kByte) {
        changes_.add(placeOf(column, number), fmt::format("{}", before), valueText(row_, column),
                     "8 bits hold no more; --type gives a column more of them");
    } else {
        changes_.add(placeOf(column, number), fmt::format("the blank {}", before),
                     fmt::format("'{}'", kNoCharacter),
                     "a column of characters cannot hold blanks in text; --type " + names_[column] +
                         "=uint8 makes numbers of them");
    }
}

/// As files keep it: the low 8 bits.
bool RowConversion::keepByte(std::size_t column) {
    const double before = row_.getValue(column);
    const auto low = static_cast<std::uint8_t>(SensorFile::lowBits(before) & 0xff);
    const double after = row_.getTypeCode(column) == SensorFile::kInt8
                             ? static_cast<double>(std::bit_cast<std::int8_t>(low))
                             : static_cast<double>(low);
    row_.setValue(column, after);
    return after == before;
}

bool RowConversion::keepCharacter(std::size_t column) {
    if (!isBlank(row_.getValue(column))) return true;
    row_.setValue(column, kNoCharacter);
    return false;
}

bool RowConversion::changeType(const Row& source, std::size_t column, std::uint64_t number) {
    try {
        return putFrom(source, columns_[column], row_, column);
    } catch (const Poco::RangeException&) {
        throw Poco::DataException(placeOf(column, number) + ": " +
                                  valueText(source, columns_[column]) +
                                  " is beyond the type that --type gives it");
    }
}

void RowConversion::checkDecimals(const Row& row, std::uint64_t number) {
    for (const std::size_t column : decimalColumns_) {
        const double value = row.getValue(column);
        const bool isKept = row.getTypeCode(column) == SensorFile::kDouble
                                ? decimals_.keeps(value)
                                : decimals_.keeps(static_cast<float>(value));
        if (!isKept) addDecimals(row, column, number);
    }
}

void RowConversion::addDecimals(const Row& row, std::size_t column, std::uint64_t number) {
    if (changes_.isFirstKnown()) {
        changes_.addFurther();
        return;
    }
    changes_.add(placeOf(column, number), valueText(row, column),
                 decimals_.textOf(row.getValue(column)), kDecimalsAdvice);
}

std::string RowConversion::placeOf(std::size_t column, std::uint64_t number) const {
    return fmt::format("row {}, column {}", number, names_[column]);
}

}  // namespace SensorFileTool
