#include "sensorfile/Column.hpp"

#include "sensorfile/ColumnType.hpp"

#include <utility>

namespace SensorFile {

Column::Column(std::string name, int typeCode)
    : name_(std::move(name)),
      typeCode_(canonicalColumnType(typeCode)),
      typeName_(columnTypeName(typeCode_)),
      size_(columnTypeSize(typeCode_)),
      type_(AbstractType::create(typeCode_)) {}

Column::Column(const Column& other) : Column(other.name_, other.typeCode_) {}

Column& Column::operator=(const Column& other) {
    if (this != &other) *this = Column(other);
    return *this;
}

}  // namespace SensorFile
