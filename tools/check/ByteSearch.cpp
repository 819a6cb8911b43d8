#include "tools/check/ByteSearch.hpp"

#include "sensorfile/ByteOrder.hpp"
#include "sensorfile/SectionFormat.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr std::size_t kBlock = std::size_t{256} * 1024;
// Labels are a word or two.
constexpr std::int64_t kMaxLabel = 256;

template <typename T>
void append(std::string& bytes, T value, bool isReversed) {
    std::array<char, sizeof(T)> field{};
    SensorFile::storeBigEndian(field.data(), value);
    if (isReversed) std::reverse(field.begin(), field.end());
    bytes.append(field.data(), field.size());
}

std::string binaryOpening(bool isReversed) {
    std::string bytes;
    for (const std::uint32_t word : SensorFile::kSectionMagic)
        append(bytes, word, isReversed);
    append(bytes, SensorFile::kDataId, isReversed);
    return bytes;
}

std::string textOpening() {
    std::string text;
    for (const std::uint32_t word : SensorFile::kSectionMagic)
        text += fmt::format("{:08x}\t", word);
    return text + fmt::format("{:04x}", SensorFile::kDataId);
}

}  // namespace

std::vector<std::string> dataOpenings(bool binary) {
    if (binary) return {binaryOpening(false), binaryOpening(true)};
    return {textOpening()};
}

std::int64_t ByteSearch::find(std::int64_t from) {
    const std::size_t size = wanted_.front().size();
    std::string window;
    file_.seek(from);
    for (;;) {
        const std::size_t kept = std::min(window.size(), size - 1);
        from += static_cast<std::int64_t>(window.size() - kept);
        window.erase(0, window.size() - kept);
        window.resize(kept + kBlock);
        const auto count = file_.sgetn(window.data() + kept, kBlock);
        if (count <= 0) return -1;
        window.resize(kept + static_cast<std::size_t>(count));
        std::size_t found = std::string::npos;
        for (const std::string& one : wanted_)
            found = std::min(found, std::string_view(window).find(one));
        if (found != std::string::npos) return from + static_cast<std::int64_t>(found);
    }
}

std::int64_t ByteSearch::lineStart(std::int64_t offset) {
    const std::int64_t first = std::max<std::int64_t>(0, offset - kMaxLabel);
    std::string before(static_cast<std::size_t>(offset - first), '\0');
    file_.seek(first);
    file_.sgetn(before.data(), static_cast<std::streamsize>(before.size()));
    const std::size_t end = before.rfind('\n');
    return end == std::string::npos ? first : first + static_cast<std::int64_t>(end) + 1;
}

}  // namespace SensorFileTool
