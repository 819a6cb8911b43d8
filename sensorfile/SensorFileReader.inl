#pragma once

#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/ValueCast.hpp"

namespace SensorFile {
namespace Internal {

/// POCO's own conversion of floating point numbers refuses some values that fit once truncated,
/// and is undefined for NaN.
template <typename T>
T numberIn(const Poco::Dynamic::Var& value) {
    if (value.type() == typeid(float)) return fitCast<T>(value.extract<float>());
    if (value.type() == typeid(double)) return fitCast<T>(value.extract<double>());
    return value.convert<T>();
}

}  // namespace Internal

/// The usual case of a binary file: the whole row is in memory. No stream is asked then, since one
/// that has failed has left nothing in memory. False leaves everything as it was.
inline bool SensorFileReader::takeRow(double* row, std::uint64_t* bits, std::size_t size) {
    const std::size_t bytes = splitRow_.size();
    if (bytes == 0 || size != columnCount_ || column_ != 0) return false;
    const char* const start = block_.cursor();
    if (static_cast<std::size_t>(block_.end() - start) < bytes) return false;
    binaryRow_.decode(start, row);
    if (bits != nullptr) binaryRow_.decodeWide(start, bits);
    block_.consume(start + bytes);
    countRow();
    return true;
}

template <typename T>
requires std::is_arithmetic_v<T>
bool SensorFileReader::read(T* values, std::size_t count) {
    if constexpr (std::is_same_v<T, double>) {
        if (takeRow(values, nullptr, count)) return true;
    }
    if (!isOpen_ || isWriteMode_) return false;
    for (std::size_t i = 0; i < count; ++i) {
        if constexpr (std::is_same_v<T, double>) {
            if (column_ == 0 && columnCount_ != 0 && count - i >= columnCount_) {
                if (!takeRow(values + i, nullptr, columnCount_)) readRowValues(values + i, nullptr);
                i += columnCount_ - 1;
                continue;
            }
        }
        if (isNextOfType(typeNameOf<T>())) {
            values[i] = readTyped<T>();
        } else {
            Poco::Dynamic::Var value;
            values[i] = readValue(value) ? Internal::numberIn<T>(value) : T{};
        }
    }
    return true;
}

}  // namespace SensorFile
