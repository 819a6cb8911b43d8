#pragma once

#include "sensorfile/AbstractType.hpp"

#include <string>

namespace SensorFile {

/// The holder for one storage type T of the column types: (un)signed char, short, int, 64-bit
/// integer, float, double, bool.
template <typename T>
class AnyType : public AbstractType {
 public:
    [[nodiscard]] std::string toText(const Poco::Dynamic::Var& value, int precision) const override;
    [[nodiscard]] Poco::Dynamic::Var convert(const Poco::Dynamic::Var& value) const override;
    [[nodiscard]] std::string toBytes(const Poco::Dynamic::Var& value) const override;
};

}  // namespace SensorFile
