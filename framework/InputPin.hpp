#pragma once

#include "framework/InputPinBase.hpp"

namespace Quoril::Core {

/// An input pin for samples of T, e.g. Eigen::MatrixXd.
template <class T>
class QUORIL_TEMPLATE_API InputPin final : public InputPinBase<T> {
 public:
    InputPin(const std::string& name, PinManager* manager)
        : Pin(name, manager), InputPinBase<T>(name, manager) {}
    /// Disconnects while the object is whole: until then another layout's thread may use it.
    ~InputPin() override { this->disconnect(); }
};

}  // namespace Quoril::Core
