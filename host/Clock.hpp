#pragma once

#include "framework/Export.hpp"
#include "host/WakeSignal.hpp"

#include <optional>

namespace Quoril::Core {

/// The steady clock by which a flow is paced, and the waiting for it. Tests replace it.
class QUORIL_CORE_API Clock {
 public:
    using Instant = WakeSignal::Instant;

    virtual ~Clock();
    [[nodiscard]] virtual Instant now() = 0;
    /// Waits for the signal, or until the deadline.
    virtual void wait(WakeSignal& signal, const std::optional<Instant>& deadline,
                      WakeSignal::Meanwhile meanwhile) = 0;

    /// The machine's own.
    static Clock& steady();
};

}  // namespace Quoril::Core
