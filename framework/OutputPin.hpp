#pragma once

#include "framework/OutputPinBase.hpp"

namespace Quoril::Core {

/// An output pin for samples of T, e.g. Eigen::MatrixXd.
template <class T>
class QUORIL_TEMPLATE_API OutputPin final : public OutputPinBase<T> {
 public:
    OutputPin(const std::string& name, PinManager* manager)
        : Pin(name, manager), OutputPinBase<T>(name, manager) {}
    /// Disconnects while the object is whole: until then another layout's thread may use it.
    ~OutputPin() override { this->disconnectAll(); }
};

}  // namespace Quoril::Core
