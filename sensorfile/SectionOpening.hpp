#pragma once

#include <cstdint>

namespace SensorFile {

/// What follows the three magic words; an id of 0 when they were not there.
struct SectionOpening {
    std::uint16_t id = 0;
    std::uint16_t version = 0;
};

}  // namespace SensorFile
