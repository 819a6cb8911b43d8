#include "tests/sensorfile/TestSupport.hpp"

#include "tests/support/TemporaryPath.hpp"

#include <cctype>
#include <fstream>
#include <sstream>

namespace SensorFile {
namespace {

class CommaPunctuation : public std::numpunct<char> {
 protected:
    [[nodiscard]] char do_decimal_point() const override { return ','; }
    [[nodiscard]] char do_thousands_sep() const override { return '.'; }
    [[nodiscard]] std::string do_grouping() const override { return "\3"; }
};

template <typename Write>
std::string written(const SensorFileConfig& config, bool binary, Write write) {
    std::ostringstream out;
    (config.*write)(out, binary);
    return out.str();
}

}  // namespace

TemporaryFile::TemporaryFile() : path_(Support::uniqueTemporaryPath()) {}

TemporaryFile::TemporaryFile(const std::string& content) : TemporaryFile() {
    setContent(content);
}

TemporaryFile::~TemporaryFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

std::string TemporaryFile::content() const {
    std::ifstream in(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void TemporaryFile::setContent(std::string_view content) const {
    // Some file systems write a file to the disk at once when it is replaced by emptying it.
    std::filesystem::remove(path_);
    std::ofstream out(path_, std::ios::binary | std::ios::trunc);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
}

FakeClock::FakeClock() : before_(Clock::replace(this)) {}

FakeClock::~FakeClock() {
    Clock::replace(before_);
}

CommaLocale::CommaLocale()
    : before_(std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation))) {}

CommaLocale::~CommaLocale() {
    std::locale::global(before_);
}

SensorFileConfig configOf(const ColumnList& columns) {
    SensorFileConfig config;
    config.setCreationTime({2017, 5, 23, 10, 4, 31});
    config.setCalibTime({2016, 12, 1, 8, 0, 9});
    for (const auto& [name, typeCode] : columns)
        config.addColumn(name, typeCode);
    return config;
}

SensorFileConfig configOfTypes(const std::vector<int>& typeCodes) {
    ColumnList columns;
    for (const int code : typeCodes) {
        columns.emplace_back(std::string(1, static_cast<char>('a' + columns.size() % 26)), code);
    }
    return configOf(columns);
}

std::string bytes(std::string_view hex) {
    std::string result;
    std::string digits;
    for (const char c : hex) {
        if (c == ' ') continue;
        digits.push_back(c);
        if (digits.size() < 2) continue;
        result.push_back(static_cast<char>(std::stoi(digits, nullptr, 16)));
        digits.clear();
    }
    return result;
}

std::string hexOf(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string result;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        result.push_back(kDigits[byte >> 4]);
        result.push_back(kDigits[byte & 0xf]);
    }
    return result;
}

std::string headerText(const SensorFileConfig& config) {
    return written(config, false, &SensorFileConfig::writeHeaderSection);
}
std::string headerBytes(const SensorFileConfig& config) {
    return written(config, true, &SensorFileConfig::writeHeaderSection);
}
std::string calibText(const SensorFileConfig& config) {
    return written(config, false, &SensorFileConfig::writeCalibSection);
}
std::string calibBytes(const SensorFileConfig& config) {
    return written(config, true, &SensorFileConfig::writeCalibSection);
}
std::string dataText(const SensorFileConfig& config) {
    return written(config, false, &SensorFileConfig::writeDataSection);
}
std::string dataBytes(const SensorFileConfig& config) {
    return written(config, true, &SensorFileConfig::writeDataSection);
}

std::string openingOf(const SensorFileConfig& config, bool binary) {
    return binary ? headerBytes(config) + calibBytes(config) + dataBytes(config)
                  : headerText(config) + calibText(config) + dataText(config);
}

}  // namespace SensorFile
