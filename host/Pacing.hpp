#pragma once

namespace Quoril::Core {

/// At which pace the host calls the sources of a flow.
struct Pacing {
    enum class Mode {
        kOwn,      ///< each source at its own pace
        kFactor,   ///< by the time stamps that sources push: 1 is real time, 2 twice as fast
        kMaximum,  ///< without waiting, but never so that a buffer downstream overflows
    };
    Mode mode = Mode::kOwn;
    double factor = 1.0;
};

}  // namespace Quoril::Core
