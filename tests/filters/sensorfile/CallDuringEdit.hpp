#pragma once

#include "framework/AbstractProperty.hpp"
#include "framework/Filter.hpp"

/// Makes a filter's processing call whenever an attribute of a property changes, as a host's thread
/// might while an edit is under way.
class CallDuringEdit final : public Quoril::Core::PropertyObserver {
 public:
    CallDuringEdit(Quoril::Core::Filter& filter, Quoril::Core::AbstractProperty& property)
        : filter_(filter), property_(property) {
        property_.addObserver(*this);
    }
    ~CallDuringEdit() override { property_.removeObserver(*this); }
    CallDuringEdit(const CallDuringEdit&) = delete;
    CallDuringEdit& operator=(const CallDuringEdit&) = delete;

    void valueChanged(const Quoril::Core::AbstractProperty& /*property*/) override {}
    void attributeChanged(const Quoril::Core::AbstractProperty& /*property*/) override {
        ++calls;
        filter_.process();
    }

    int calls = 0;

 private:
    Quoril::Core::Filter& filter_;
    Quoril::Core::AbstractProperty& property_;
};
