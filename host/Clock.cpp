#include "host/Clock.hpp"

#include <chrono>

namespace Quoril::Core {

namespace {

class SteadyClock final : public Clock {
 public:
    Instant now() override { return std::chrono::steady_clock::now(); }
    void wait(WakeSignal& signal, const std::optional<Instant>& deadline,
              WakeSignal::Meanwhile meanwhile) override {
        signal.wait(deadline, meanwhile);
    }
};

}  // namespace

Clock::~Clock() = default;

Clock& Clock::steady() {
    static SteadyClock clock;
    return clock;
}

}  // namespace Quoril::Core
