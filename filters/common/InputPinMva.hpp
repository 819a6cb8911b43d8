#pragma once

#include "framework/EnumProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/InputPin.hpp"
#include "framework/StringProperty.hpp"

#include <string>
#include <vector>

#include <Eigen/Core>

namespace Filters {

using MatrixInputPin = Quoril::Core::InputPin<Eigen::MatrixXd>;
using MatrixSample = Quoril::Core::TimeStampedData<Eigen::MatrixXd>;

/// An input pin with the two properties that describe its columns: their names and their type.
///
/// All three belong to a filter and leave it when the record is destroyed, which must happen while
/// no processing call runs. A new record's properties are not registered: see show().
class InputPinMva {
 public:
    struct Names {
        std::string pin;
        std::string columnNames;
        std::string columnType;
    };

    /// @param types  texts of the type property; position 0 is chosen
    InputPinMva(Quoril::Core::Filter& filter, const Names& names,
                const std::vector<std::string>& types, const Quoril::Core::BufferSettings& buffer);
    ~InputPinMva();
    InputPinMva(const InputPinMva&) = delete;
    InputPinMva& operator=(const InputPinMva&) = delete;

    [[nodiscard]] MatrixInputPin& getPin() { return pin_; }
    [[nodiscard]] const Quoril::Core::StringProperty& getColumnNames() const { return names_; }
    [[nodiscard]] const Quoril::Core::EnumProperty<std::string>& getColumnType() const {
        return type_;
    }
    [[nodiscard]] bool isConnected() const { return pin_.getOutputPin() != nullptr; }

    /// Makes the two properties the last ones that users see.
    void show();
    /// Locks both properties, or gives them back to the users.
    void setIsWritable(bool isWritable);

 private:
    Quoril::Core::PropertyBag& bag_;
    MatrixInputPin pin_;
    Quoril::Core::StringProperty names_;
    Quoril::Core::EnumProperty<std::string> type_;
};

/// Makes a property the last one that users see.
void showLast(Quoril::Core::PropertyBag& bag, Quoril::Core::AbstractProperty& property);

}  // namespace Filters
