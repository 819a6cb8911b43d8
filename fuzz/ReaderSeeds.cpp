/// Small sensor files of every kind, each behind the byte by which the harness chooses its
/// encoding.

#include "fuzz/Seeds.hpp"
#include "sensorfile/SensorFileWriter.hpp"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using SensorFile::SensorFileConfig;
using SensorFile::SensorFileWriter;

constexpr int kFirstType = 2;
constexpr int kLastType = 16;

SensorFileConfig makeConfig(int headerVersion, int calibVersion, bool calibOnly) {
    SensorFileConfig config;
    config.setHeaderVersion(static_cast<std::uint16_t>(headerVersion));
    config.setCalibVersion(static_cast<std::uint16_t>(calibVersion));
    config.setCalibOnly(calibOnly);
    for (int type = kFirstType; type <= kLastType; ++type)
        config.addColumn("column" + std::to_string(type), type);
    const Eigen::MatrixXd gain = Eigen::MatrixXd::Identity(3, 3);
    const Eigen::MatrixXd offset = Eigen::MatrixXd::Zero(1, 3);
    config.addCalibData("Gain1", gain);
    config.addCalibData("Offset1", offset);
    return config;
}

void writeSeed(const std::filesystem::path& folder, const std::string& name,
               const SensorFileConfig& config, bool binary) {
    const std::string path = (folder / name).string();
    SensorFileWriter writer;
    writer.open(path, config, binary, true);
    if (!config.isCalibOnly()) {
        for (int row = 0; row < 3; ++row)
            writer.writeRow(std::vector<double>(config.getColumnCount(), 65.0 + row));
    }
    writer.close();
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    file.close();
    std::ofstream(path, std::ios::binary) << static_cast<char>(binary ? 1 : 0) << bytes;
}

}  // namespace

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    for (const bool binary : {false, true}) {
        for (const int headerVersion : {0x0100, 0x0101}) {
            for (const int calibVersion : {0x0100, 0x0101, 0x0200, 0x8101}) {
                for (const bool calibOnly : {false, true}) {
                    const std::string name = std::string(binary ? "binary" : "text") + "-" +
                                             std::to_string(headerVersion) + "-" +
                                             std::to_string(calibVersion) +
                                             (calibOnly ? "-calib" : "");
                    writeSeed(folder, name, makeConfig(headerVersion, calibVersion, calibOnly),
                              binary);
                }
            }
        }
    }
}
