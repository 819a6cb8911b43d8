#pragma once

#include "framework/ValueProperty.hpp"

#include <cstdint>
#include <limits>

namespace Quoril::Core {

/// A number between two bounds, both inclusive. The step is for editors and messages only: a value
/// off the step's grid is accepted.
template <class T>
class RangeProperty;

template <>
class QUORIL_TEMPLATE_API RangeProperty<int> : public ValueProperty<int> {
 public:
    RangeProperty(const std::string& name, PropertyBag* bag, int value = 0)
        : ValueProperty<int>(name, bag, value) {}

    void accept(Util::System::AbstractVisitor& visitor) const override {
        if (!visitAs(*this, visitor)) AbstractProperty::accept(visitor);
    }

    /// The callback runs before the range test: it sees values that are then refused.
    /// @throws Poco::RangeException if the value is out of range
    void validate(const int& value) const override {
        ValueProperty<int>::validate(value);
        if (value >= minimum_ && value <= maximum_) return;
        std::ostringstream message;
        message.imbue(std::locale::classic());
        message << value << " does not fit in [" << minimum_ << ";" << maximum_
                << "], (step : " << step_ << ")";
        throw Poco::RangeException(message.str());
    }

    void setRange(int minimum, int maximum, int step) {
        const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
        minimum_ = minimum;
        maximum_ = maximum;
        step_ = step;
        notifyAttributeChanged();
    }

    /// Bounds and step; read under the synchronizer.
    [[nodiscard]] int getMinimum() const { return minimum_; }
    [[nodiscard]] int getMaximum() const { return maximum_; }
    [[nodiscard]] int getStep() const { return step_; }

 private:
    // One above the smallest integer, so that the range is symmetric.
    std::int32_t minimum_ = -2147483647;
    std::int32_t maximum_ = 2147483647;
    std::int32_t step_ = 0;
};

}  // namespace Quoril::Core
