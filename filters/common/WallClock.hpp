#pragma once

namespace Filters {

/// The present time, UTC, in seconds since 1 January 1970: time stamps of calibrations that a
/// sensor unit sends.
[[nodiscard]] double unixTime();

/// The present time, UTC, in seconds since 15 October 1582, when the Gregorian calendar began: time
/// stamps of calibrations that come from a sensor file.
[[nodiscard]] double gregorianTime();

}  // namespace Filters
