#pragma once

#include "framework/PinManager.hpp"
#include "framework/PropertyBag.hpp"

#include <string>

namespace Quoril::Core {

/// A node of the dataflow graph, with pins and properties.
class QUORIL_CORE_API Filter : public PinManager, public PropertyBagOwner {
 public:
    /// @param isScheduled  true: the host calls process(); false: the filter only has properties
    Filter(const std::string& name, bool isScheduled);
    ~Filter() override;

 protected:
    /// Places the filter under a layout manager, which thereby runs it; null takes it out. Called
    /// by the host, under the locks of both sides, while the filter is at rest.
    virtual void setManager(LayoutManager* manager);
    friend class LayoutManager;

 public:
    /// Name of the filter's class, the same text as its factory's.
    [[nodiscard]] virtual const char* getClassName() const = 0;

    [[nodiscard]] Synchronizer* getPropertySynchronizer() override;

    [[nodiscard]] bool getIsScheduled() const noexcept { return isScheduled_; }

 private:
    const bool isScheduled_;
};

}  // namespace Quoril::Core
