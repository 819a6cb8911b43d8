#pragma once

#include "sensorfile/AbstractType.hpp"

#include <cstddef>
#include <memory>
#include <string>

namespace SensorFile {

/// A named, typed column of a sensor file. Copies share nothing.
class Column {
 public:
    /// @param typeCode 2 to 18; 17 and 18 become 6 and 7
    /// @throws Poco::DataException if the code is no column type
    Column(std::string name, int typeCode);
    Column(const Column& other);
    Column& operator=(const Column& other);
    Column(Column&&) noexcept = default;
    Column& operator=(Column&&) noexcept = default;
    ~Column() = default;

    [[nodiscard]] const std::string& getName() const { return name_; }
    [[nodiscard]] int getTypeCode() const { return typeCode_; }
    /// The name that a text header carries.
    [[nodiscard]] const std::string& getTypeName() const { return typeName_; }
    /// Width in bytes of a value in the binary encoding.
    [[nodiscard]] std::size_t getSize() const { return size_; }
    [[nodiscard]] const AbstractType& getType() const { return *type_; }

 private:
    std::string name_;
    int typeCode_;
    std::string typeName_;
    std::size_t size_;
    std::unique_ptr<AbstractType> type_;
};

}  // namespace SensorFile
