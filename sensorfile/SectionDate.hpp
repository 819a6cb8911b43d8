#pragma once

#include <Poco/DateTime.h>

namespace SensorFile {

/// A date as a section holds it, not yet known to exist.
struct SectionDate {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;

    /// @throws FormatException if there is no such date
    [[nodiscard]] Poco::DateTime toDateTime() const;
};

}  // namespace SensorFile
