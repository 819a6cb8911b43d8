#pragma once

#include "framework/AbstractProperty.hpp"
#include "framework/PropertyBag.hpp"
#include "framework/Synchronizer.hpp"

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Quoril::Core {

/// An owner of properties without pins.
class TestOwner final : public PropertyBagOwner {
 public:
    [[nodiscard]] Synchronizer* getPropertySynchronizer() override { return &synchronizer; }
    Synchronizer synchronizer;
};

/// Writes down what it is told.
class RecordingObserver final : public PropertyObserver {
 public:
    explicit RecordingObserver(std::vector<std::string>& events) : events_(events) {}
    void valueChanged(const AbstractProperty& property) override {
        events_.push_back("value " + property.getName());
        if (onValue) onValue();
    }
    void attributeChanged(const AbstractProperty& property) override {
        events_.push_back("attribute " + property.getName());
    }
    std::function<void()> onValue;

 private:
    std::vector<std::string>& events_;
};

}  // namespace Quoril::Core
