#pragma once

#include "framework/AbstractFactory.hpp"
#include "framework/Filter.hpp"

namespace Quoril::Core {

/// The factory of filter class T, which has the constant T::kClassName and a constructor that takes
/// the instance name.
template <class T>
class FilterFactory final : public AbstractFilterFactory {
 public:
    using AbstractFilterFactory::AbstractFilterFactory;

    void destroy(Filter* filter) override { delete filter; }
    [[nodiscard]] const char* name() const override { return T::kClassName; }
    [[nodiscard]] Filter* create(const std::string& instanceName) override {
        return new T(instanceName);
    }
};

}  // namespace Quoril::Core
