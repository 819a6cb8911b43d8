#include "sensorfile/AnyType.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/NumberText.hpp"
#include "sensorfile/ValueCast.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <locale>
#include <sstream>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

/// POCO's own conversion of floating point numbers refuses some values that fit once truncated,
/// such as -32768 for 16 bits, so numbers are converted here.
template <typename T>
T valueAs(const Poco::Dynamic::Var& value) {
    if (value.type() == typeid(T)) return value.extract<T>();
    if (value.type() == typeid(float)) return fitCast<T>(value.extract<float>());
    if (value.type() == typeid(double)) return fitCast<T>(value.extract<double>());
    if (value.isInteger() && value.isSigned()) return fitCast<T>(value.convert<Poco::Int64>());
    if (value.isInteger()) return fitCast<T>(value.convert<Poco::UInt64>());
    return value.convert<T>();
}

}  // namespace

template <typename T>
std::string AnyType<T>::toText(const Poco::Dynamic::Var& value, int precision) const {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::fixed;
    text.precision(std::min(precision, kMaxDecimals));  // streams take the room on the stack
    text << valueAs<T>(value);
    return text.str();
}

template <typename T>
Poco::Dynamic::Var AnyType<T>::convert(const Poco::Dynamic::Var& value) const {
    return valueAs<T>(value);
}

template <typename T>
std::string AnyType<T>::toBytes(const Poco::Dynamic::Var& value) const {
    const T converted = valueAs<T>(value);
    std::string bytes(sizeof converted, '\0');
    std::memcpy(bytes.data(), &converted, sizeof converted);
    return bytes;
}

std::unique_ptr<AbstractType> AbstractType::create(int typeCode) {
    switch (canonicalColumnType(typeCode)) {
        case kUChar:
        case kUInt8:
            return std::make_unique<AnyType<unsigned char>>();
        case kChar:
        case kInt8:
            return std::make_unique<AnyType<signed char>>();
        case kUShort:
        case kUInt16:
            return std::make_unique<AnyType<unsigned short>>();
        case kShort:
        case kInt16:
            return std::make_unique<AnyType<short>>();
        case kUInt32:
            return std::make_unique<AnyType<unsigned int>>();
        case kInt32:
            return std::make_unique<AnyType<int>>();
        case kUInt64:
            return std::make_unique<AnyType<Poco::UInt64>>();
        case kInt64:
            return std::make_unique<AnyType<Poco::Int64>>();
        case kFloat:
            return std::make_unique<AnyType<float>>();
        case kDouble:
            return std::make_unique<AnyType<double>>();
        default:
            return std::make_unique<AnyType<bool>>();
    }
}

template class AnyType<signed char>;
template class AnyType<unsigned char>;
template class AnyType<short>;
template class AnyType<unsigned short>;
template class AnyType<int>;
template class AnyType<unsigned int>;
template class AnyType<float>;
template class AnyType<double>;
template class AnyType<Poco::Int64>;
template class AnyType<Poco::UInt64>;
template class AnyType<bool>;

}  // namespace SensorFile
