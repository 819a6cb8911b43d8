#pragma once

#include "framework/NamedObject.hpp"
#include "framework/PluginMetaData.hpp"

namespace Quoril::Core {

/// What a module installs in the host.
class QUORIL_CORE_API Plugin : public NamedObject {
 public:
    explicit Plugin(const std::string& name);
    ~Plugin() override;

    /// Called by the plug-in manager when the plug-in comes and goes.
    virtual void install() = 0;
    virtual void uninstall() = 0;
    [[nodiscard]] virtual const PluginMetaData& getMetaData() const = 0;
};

}  // namespace Quoril::Core
