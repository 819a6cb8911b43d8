#pragma once

#include "framework/Export.hpp"

#include <memory>

namespace Quoril::Core {

class PluginManager;

/// The one entrance to the host in a process.
class QUORIL_CORE_API FlowManager {
 public:
    static FlowManager& instance();

    FlowManager(const FlowManager&) = delete;
    FlowManager& operator=(const FlowManager&) = delete;

    [[nodiscard]] PluginManager& getPluginManager() const;

 private:
    FlowManager();
    ~FlowManager();

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace Quoril::Core
