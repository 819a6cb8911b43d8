#pragma once

#include "framework/NamedObject.hpp"

#include <string>

namespace Quoril::Core {

class PinManager;
class Synchronizer;

/// An end of a connection between filters.
class QUORIL_CORE_API Pin : public NamedObject {
 public:
    Pin(const std::string& name, PinManager* manager);
    ~Pin() override;

    /// The filter that owns the pin, or null.
    [[nodiscard]] PinManager* getManager() const noexcept { return manager_; }
    /// The filter's synchronizer; null for a pin without a filter.
    [[nodiscard]] Synchronizer* getSynchronizer() const;

    /// Name of the type of the samples; only pins of equal types can be connected.
    [[nodiscard]] virtual std::string getDataTypeName() const = 0;

    /// Number of samples that wait in the pin's buffer; 0 for an output pin. Safe while another
    /// thread pushes.
    [[nodiscard]] virtual unsigned getWaitingCount() const;

 private:
    PinManager* const manager_;
};

}  // namespace Quoril::Core
