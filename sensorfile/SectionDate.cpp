#include "sensorfile/SectionDate.hpp"

#include "sensorfile/FormatException.hpp"

#include <string>

namespace SensorFile {

Poco::DateTime SectionDate::toDateTime() const {
    if (!Poco::DateTime::isValid(year, month, day, hour, minute, second)) {
        const auto text = [](int number) { return std::to_string(number); };
        throw FormatException("no such date: " + text(day) + "/" + text(month) + "/" + text(year) +
                              " " + text(hour) + ":" + text(minute) + ":" + text(second));
    }
    return {year, month, day, hour, minute, second};
}

}  // namespace SensorFile
