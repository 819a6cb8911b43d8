#pragma once

#include "framework/Filter.hpp"

namespace Support {

/// A filter with nothing of its own: an owner for pins and properties.
class BareFilter : public Quoril::Core::Filter {
 public:
    BareFilter() : Filter("bare", true) {}
    [[nodiscard]] const char* getClassName() const override { return "BareFilter"; }
    void process() override {}
};

}  // namespace Support
