#pragma once

#include "framework/Export.hpp"

#include <string>

namespace Quoril::Core {

/// An object with a name that never changes.
class QUORIL_CORE_API NamedObject {
 public:
    explicit NamedObject(const std::string& name);
    virtual ~NamedObject();
    NamedObject(const NamedObject&) = delete;
    NamedObject& operator=(const NamedObject&) = delete;

    [[nodiscard]] const std::string& getName() const noexcept { return name_; }

 private:
    const std::string name_;
};

}  // namespace Quoril::Core
