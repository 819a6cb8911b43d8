#pragma once

#include "framework/Export.hpp"

#include <cstdint>

namespace Quoril::Core::Topology {

/// Counts the changes of any graph in the process: pins made and destroyed, connections, filters
/// that moved. Who caches something about a graph compares versions. Safe from any thread.
QUORIL_CORE_API std::uint64_t version() noexcept;

/// Call under the synchronizers of what changed.
QUORIL_CORE_API void markChanged() noexcept;

}  // namespace Quoril::Core::Topology
