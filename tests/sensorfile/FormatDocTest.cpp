// The worked files of docs/file-format.md are what the writer writes, and the reader takes them.

#include "sensorfile/CalibData.hpp"
#include "sensorfile/Kivra2Calib.hpp"
#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <Eigen/Core>
#include <Poco/DateTime.h>
#include <gtest/gtest.h>

namespace SensorFile {
namespace {

using Rows = std::vector<std::vector<double>>;

std::string contentOf(const std::string& path) {
    std::ifstream file{path, std::ios::binary};
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>{file}, {}};
}

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/// The lines of the code block that follows the comment "<!-- worked file: NAME -->".
std::vector<std::string> workedLines(const std::string& name) {
    std::istringstream page{contentOf(QUORIL_SOURCE_DIR "/docs/file-format.md")};
    std::vector<std::string> lines;
    std::string line;
    while (std::getline(page, line) && line != "<!-- worked file: " + name + " -->") {
    }
    std::getline(page, line);
    EXPECT_EQ(line, "```text") << "no worked file " << name;
    while (std::getline(page, line) && line != "```")
        lines.push_back(line);
    return lines;
}

/// Arrows stand for tabs, hooks for line feeds; the page's own line ends carry no meaning.
std::string workedText(const std::string& name) {
    std::string text;
    for (const auto& line : workedLines(name))
        text += line;
    return replaceAll(replaceAll(text, "→", "\t"), "↵", "\n");
}

/// Lines of an offset, bytes and what they mean, two blanks or more between them.
std::string workedBytes(const std::string& name) {
    constexpr std::size_t kBytesStart = 6;  // behind four digits and two blanks
    std::string bytes;
    for (const auto& line : workedLines(name)) {
        EXPECT_EQ(std::stoul(line.substr(0, kBytesStart), nullptr, 16), bytes.size()) << line;
        const auto length = std::min(line.find("  ", kBytesStart), line.size()) - kBytesStart;
        std::istringstream digits{line.substr(kBytesStart, length)};
        for (std::string pair; digits >> pair;) {
            EXPECT_EQ(pair.size(), 2U) << line;
            bytes += static_cast<char>(std::stoul(pair, nullptr, 16));
        }
    }
    return bytes;
}

std::string hex(const std::string& bytes) {
    std::ostringstream text;
    for (const char byte : bytes) {
        constexpr auto kDigits = "0123456789abcdef";
        text << kDigits[static_cast<unsigned char>(byte) >> 4] << kDigits[byte & 0xf] << ' ';
    }
    return text.str();
}

std::string writtenFile(const SensorFileConfig& config, const Rows& rows, bool binary) {
    const TemporaryFile file;
    SensorFileWriter writer;
    writer.open(file.path(), config, binary, /*writeHeaders=*/true);
    for (const auto& row : rows)
        writer.writeRow(row);
    writer.close();
    return contentOf(file.path());
}

Rows rowsOf(const std::string& content, bool binary, std::size_t columns) {
    const TemporaryFile file;
    std::ofstream{file.path(), std::ios::binary} << content;
    SensorFileReader reader;
    reader.open(file.path(), binary);
    Rows rows;
    for (std::vector<double> row(columns); reader.readRow(row);)
        rows.push_back(row);
    return rows;
}

SensorFileConfig recording() {
    SensorFileConfig config;
    config.setCreationTime(Poco::DateTime(2017, 5, 23, 10, 4, 31));
    config.setCalibTime(Poco::DateTime(2017, 5, 24, 9, 0, 0));
    config.addColumn("ACCX", "int16");
    config.addColumn("TIME", "double");
    return config;
}

SensorFileConfig calibration() {
    SensorFileConfig config;
    config.setCalibOnly(true);
    config.setCalibTime(Poco::DateTime(2017, 5, 23, 10, 4, 31));
    config.addCalibData("Gain", Eigen::MatrixXd{{0.998, 0.25}, {-0.5, 1.002}});
    config.addCalibData("Range", Eigen::MatrixXi{{-2048, 2047}});
    return config;
}

const Rows kRows = {{-12, 0.005}, {7, 0.01}};

TEST(FormatDoc, RecordingInText) {
    const std::string worked = workedText("recording in text");
    EXPECT_EQ(worked, writtenFile(recording(), kRows, /*binary=*/false));
    EXPECT_EQ(rowsOf(worked, /*binary=*/false, 2), kRows);
}

TEST(FormatDoc, RecordingInBinary) {
    const std::string worked = workedBytes("recording in binary");
    EXPECT_EQ(hex(worked), hex(writtenFile(recording(), kRows, /*binary=*/true)));
    EXPECT_EQ(rowsOf(worked, /*binary=*/true, 2), kRows);
}

TEST(FormatDoc, CalibrationInText) {
    EXPECT_EQ(workedText("calibration in text"), writtenFile(calibration(), {}, /*binary=*/false));
}

TEST(FormatDoc, CalibrationInBinary) {
    EXPECT_EQ(hex(workedBytes("calibration in binary")),
              hex(writtenFile(calibration(), {}, /*binary=*/true)));
}

TEST(FormatDoc, LittleEndianRecordingIsRead) {
    const std::string worked = workedBytes("little-endian recording");
    EXPECT_EQ(rowsOf(worked, /*binary=*/true, 1), (Rows{{-2}}));
}

TEST(FormatDoc, Kivra2Calibration) {
    Kivra2Calib calib;
    calib.date = Kivra2Calib::Date(Poco::DateTime(2017, 3, 5, 14, 7, 9));
    calib.version = 3;
    calib.accGain = Eigen::MatrixXd{{0.5, 0, 0}, {0.25, 0.5, 0}, {0, 0, 0.5}};
    calib.accOffset = Eigen::MatrixXd{{1, -2, 3}};
    calib.gyrGain *= 2;
    calib.gyrOffset = Eigen::MatrixXd{{0.1, 0, -0.1}};
    const TemporaryFile file;
    calib.save(file.path());
    EXPECT_EQ(hex(workedBytes("Kivra2 calibration")), hex(contentOf(file.path())));
}

TEST(FormatDoc, CodedCalibrationIsRead) {
    const TemporaryFile file;
    std::ofstream{file.path(), std::ios::binary} << workedBytes("calibration of version 0x8101");
    SensorFileReader reader;
    reader.open(file.path(), /*binary=*/true);
    const SensorFileConfig config = reader.getConfig();
    EXPECT_EQ(config.getCalibTime(), Poco::DateTime(2017, 5, 23, 10, 4, 31));
    ASSERT_EQ(config.getCalibCount(), 2U);
    using Doubles = CalibData<Eigen::MatrixXd>;
    const auto& gain = dynamic_cast<const Doubles&>(config.getCalibData(0));
    const auto& offset = dynamic_cast<const Doubles&>(config.getCalibData(1));
    EXPECT_EQ(gain.getName(), "Gain1");
    EXPECT_EQ(gain.getMatrix(), (Eigen::MatrixXd{{2, 1, 0}, {0, 2, 0}, {0, 0, 2}}));
    EXPECT_EQ(offset.getName(), "Offset1");
    EXPECT_EQ(offset.getMatrix(), (Eigen::MatrixXd{{0, 0, -1}}));
}

}  // namespace
}  // namespace SensorFile
