#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace SensorFile {

/// A named matrix of calibration coefficients, whatever its element type.
class CalibDataBase {
 public:
    virtual ~CalibDataBase() = default;

    /// The record's counted size in bytes: name length + 3 + rows x columns x element width.
    [[nodiscard]] virtual std::uint64_t size() const = 0;
    /// 9 for double, 7 for int.
    [[nodiscard]] virtual int typeCode() const = 0;
    /// "double" or "int32".
    [[nodiscard]] virtual std::string typeName() const = 0;
    /// The values for a human reader: a row a line, blanks between, no line end after the last.
    [[nodiscard]] virtual std::string toText() const = 0;
    [[nodiscard]] virtual std::unique_ptr<CalibDataBase> clone() const = 0;
    [[nodiscard]] virtual std::size_t rows() const = 0;
    [[nodiscard]] virtual std::size_t cols() const = 0;

    [[nodiscard]] const std::string& getName() const { return name_; }

 protected:
    explicit CalibDataBase(std::string name) : name_(std::move(name)) {}
    CalibDataBase(const CalibDataBase&) = default;
    CalibDataBase& operator=(const CalibDataBase&) = default;

 private:
    std::string name_;
};

}  // namespace SensorFile
