/// Calibration sections of every version and encoding, alone and in recordings, and counts that no
/// file can hold.

#include "fuzz/FileHarness.hpp"
#include "fuzz/FileSeeds.hpp"
#include "fuzz/Seeds.hpp"
#include "sensorfile/SectionFormat.hpp"

#include <limits>
#include <string>

namespace {

using SensorFile::SensorFileConfig;

constexpr std::uint16_t kVersions[] = {0x0200, 0x0101, 0x0100, 0x8101};

SensorFileConfig makeConfig() {
    SensorFileConfig config = Fuzz::configOf({});
    config.setCalibOnly(true);
    Eigen::MatrixXd gain(3, 3);
    gain << 0.998, 0.25, -0.5, 1e-300, 1.002, 1.0 / 3, std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN(), 1e22;
    const Eigen::MatrixXd offset = Eigen::MatrixXd::Constant(1, 3, -0.125);
    for (int i = 0; i < 4; ++i) {
        config.addCalibData("Gain of axes", gain);
        config.addCalibData("Offset", offset);
    }
    return config;
}

SensorFileConfig makeNamedConfig() {
    SensorFileConfig config = makeConfig();
    const Eigen::MatrixXi range = Eigen::MatrixXi::Constant(1, 2, -2048);
    const Eigen::MatrixXd none(0, 3);
    config.addCalibData("Range", range);
    config.addCalibData("None", none);
    return config;
}

/// Raw, behind an opening of ours, and the same in a recording, of either order of bytes.
void writeAll(const std::filesystem::path& folder, const SensorFileConfig& config,
              std::size_t versionIndex) {
    for (const bool binary : {false, true}) {
        const std::string section = Fuzz::sectionOf(config, binary, Fuzz::Section::kCalib);
        const std::string body = section.substr(binary ? 16 : section.find('\n') + 1);
        const std::string name =
            (binary ? "binary-" : "text-") + std::to_string(kVersions[versionIndex]);
        const unsigned choice = (binary ? 1U : 0U) | static_cast<unsigned>(versionIndex) << 4U;
        const auto choices = [&](unsigned more) {
            return std::string{'\1', static_cast<char>(choice | more)};
        };
        Fuzz::writeSeed(folder, name + "-raw", choices(2), section);
        Fuzz::writeSeed(folder, name, choices(0), body);
        Fuzz::writeSeed(folder, name + "-recording", choices(8), body);
        if (binary) Fuzz::writeSeed(folder, name + "-little-endian", choices(4), body);
    }
}

void writeHostileTexts(const std::filesystem::path& folder) {
    const std::string head = "Calib datetime:\t23/05/2017\t10:04:31\nCalib version:\t2\t\n";
    const std::string count = "Number of Calibration coefficient:\t";
    const auto write = [&](const std::string& name, const std::string& rest) {
        Fuzz::writeSeed(folder, name, {"\1\0", 2}, head + count + rest);
    };
    write("many-records", "18446744073709551615\t\n");
    write("negative-records", "-1\t\n");
    write("many-values", "1\t\na\tdouble\t(99999, 99999)\t\n1\t2\t\n");
    write("many-rows", "1\t\na\tdouble\t(2147483647, 0)\t\n");
    write("many-columns", "1\t\na\tint32\t(0, 2147483647)\t\n");
    write("negative-side", "1\t\na\tint32\t(-1, 3)\t\n");
    Fuzz::writeSeed(folder, "many-bare", "\1\x10",
                    head + "Number of Calibration data:\t9223372036854775807\t\n1\t2\t3\t");
}

void writeHostileBytes(const std::filesystem::path& folder) {
    const std::string date = "\x17\5\x11\xa\4\x1f";
    for (const char size : {'\0', '\x1e', '\x1f', '\x20', '\xff'}) {
        const std::string bytes =
            std::string(7, size == '\xff' ? '\xff' : '\0') + size + date + std::string("\0\2", 2);
        const std::string name = "size-" + std::to_string(int{size} & 0xff);
        for (const char version : {'\1', '\x11', '\x21', '\x31'})
            Fuzz::writeSeed(folder, name + "-" + std::to_string(version >> 4),
                            std::string{'\1', version}, bytes + std::string(40, '\xff'));
    }
}

}  // namespace

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    for (std::size_t i = 0; i < std::size(kVersions); ++i) {
        SensorFileConfig config = i == 0 ? makeNamedConfig() : makeConfig();
        config.setCalibVersion(kVersions[i]);
        writeAll(folder, config, i);
    }
    writeHostileTexts(folder);
    writeHostileBytes(folder);
}
