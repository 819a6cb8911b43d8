#pragma once

#include "framework/DefaultPlugin.hpp"

namespace Quoril::Core {

/// The plug-in "Quoril": the filters that come with the host, by which data get in and out of a
/// flow.
class QUORIL_CORE_API BuiltinPlugin final : public DefaultPlugin {
 public:
    static constexpr const char* kName = "Quoril";

    BuiltinPlugin();
    ~BuiltinPlugin() override;
};

/// Installs the built-in filters in the process's plug-in manager, unless they are there already.
/// Safe from any thread.
/// @throws Poco::ExistsException if another plug-in took the name, or a filter class's name
QUORIL_CORE_API void installBuiltinPlugin();

}  // namespace Quoril::Core
