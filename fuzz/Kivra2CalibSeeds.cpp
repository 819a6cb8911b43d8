/// Kivra2 calibration files of the usual and of odd shapes, whole and cut.

#include "fuzz/FileSeeds.hpp"
#include "fuzz/Seeds.hpp"
#include "sensorfile/Kivra2Calib.hpp"

#include <string>

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    std::string file("\5\3\x11\xe\7\x9\0\3", 8);
    for (std::size_t i = file.size(); i < SensorFile::Kivra2Calib::kFileSize; ++i)
        file.push_back(static_cast<char>(i % 8 < 2 ? 0x3f + i : i));
    for (const std::size_t size : {0U, 5U, 6U, 7U, 8U, 200U, 295U, 296U})
        writeSeed(folder, "cut-" + std::to_string(size), {"\0", 1}, file.substr(0, size));
    writeSeed(folder, "longer", {"\0", 1}, file + "more");
    writeSeed(folder, "small-shapes", "\3\x9\x11\x0a\x12\x00\x38", file);
    writeSeed(folder, "large-shapes", "\3\x3f\x3f\x1b\x19\x1b\x19", file + file + file + file);
}
