#include "tools/common/FileKind.hpp"

#include "sensorfile/Kivra2Calib.hpp"
#include "sensorfile/SectionFormat.hpp"

#include <array>
#include <cstdint>
#include <string_view>

#include <Poco/Exception.h>
#include <Poco/File.h>
#include <Poco/FileStream.h>

namespace SensorFileTool {

namespace {

// Of the longest beginning that is looked for.
constexpr std::size_t kHeadSize = 6;

std::uint32_t bigEndianWord(std::string_view bytes) {
    std::uint32_t word = 0;
    for (const char byte : bytes.substr(0, 4))
        word = word << 8 | static_cast<unsigned char>(byte);
    return word;
}

bool hasMagic(std::string_view head) {
    if (head.size() < 4) return false;
    const std::uint32_t word = bigEndianWord(head);
    return word == SensorFile::kSectionMagic.front() || word == SensorFile::kSwappedMagic;
}

bool hasTextOpening(std::string_view head) {
    return head.starts_with("Header") || head.starts_with("Calib");
}

}  // namespace

FileKind detectKind(const InputFile& input) {
    Poco::FileInputStream stream(input.getPath(), std::ios::in | std::ios::binary);
    std::array<char, kHeadSize> bytes{};
    stream.read(bytes.data(), bytes.size());
    const std::string_view head(bytes.data(), static_cast<std::size_t>(stream.gcount()));
    if (hasMagic(head)) return FileKind::kBinary;
    if (hasTextOpening(head)) return FileKind::kText;
    if (Poco::File(input.getPath()).getSize() == SensorFile::Kivra2Calib::kFileSize)
        return FileKind::kKivra2Calib;
    return FileKind::kUnknown;
}

}  // namespace SensorFileTool
