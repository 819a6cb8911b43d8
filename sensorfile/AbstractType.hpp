#pragma once

#include <memory>
#include <string>

#include <Poco/Dynamic/Var.h>

namespace SensorFile {

/// What a column knows of the type of its values. Holds no value; may be used from any thread.
class AbstractType {
 public:
    AbstractType() = default;
    AbstractType(const AbstractType&) = delete;
    AbstractType& operator=(const AbstractType&) = delete;

    /// The value as text of the type: fixed notation with `precision` digits after the point
    /// (1074 at most, 6 when it is negative), integers as decimal numbers, characters as the
    /// character, bool as "1" or "0".
    /// @throws Poco::RangeException if the value does not fit the type once truncated toward zero
    [[nodiscard]] virtual std::string toText(const Poco::Dynamic::Var& value,
                                             int precision) const = 0;

    /// A Var that holds the value in the type itself. A value of this type is taken as it is, any
    /// other number is truncated toward zero, other kinds go through the Var's own conversion.
    /// @throws Poco::RangeException if the value does not fit
    [[nodiscard]] virtual Poco::Dynamic::Var convert(const Poco::Dynamic::Var& value) const = 0;

    /// The converted value's bytes as they lie in memory.
    /// @throws Poco::RangeException if the value does not fit
    [[nodiscard]] virtual std::string toBytes(const Poco::Dynamic::Var& value) const = 0;

    virtual ~AbstractType() = default;

    /// A new holder for a type code.
    /// @throws Poco::DataException if the code is outside 2 to 18
    static std::unique_ptr<AbstractType> create(int typeCode);
};

}  // namespace SensorFile
