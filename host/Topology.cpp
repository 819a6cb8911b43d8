#include "host/Topology.hpp"

#include <atomic>

namespace Quoril::Core::Topology {

namespace {
std::atomic<std::uint64_t> currentVersion{1};
}

std::uint64_t version() noexcept {
    return currentVersion.load(std::memory_order_acquire);
}

void markChanged() noexcept {
    currentVersion.fetch_add(1, std::memory_order_acq_rel);
}

}  // namespace Quoril::Core::Topology
