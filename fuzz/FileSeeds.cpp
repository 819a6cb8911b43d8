#include "fuzz/FileSeeds.hpp"

#include "fuzz/FileHarness.hpp"
#include "fuzz/HeaderHarness.hpp"
#include "sensorfile/SectionFormat.hpp"

#include <fstream>
#include <vector>

namespace Fuzz {

using SensorFile::SensorFileConfig;

namespace {

SensorFileConfig configOfAllTypes() {
    std::vector<int> types;
    for (int i = 0; i < kTypeCount; ++i)
        types.push_back(kFirstType + i);
    return configOf(types);
}

SensorFileConfig configOfOddNames() {
    SensorFileConfig config = configOf({});
    config.setSampleFrequency(1e-5);
    config.addColumn("", 17);
    config.addColumn(" two words ", 18);
    config.addColumn("a name of thirty-two characters.", SensorFile::kDouble);
    config.addColumn("a name that is longer than all that a binary header keeps of it",
                     SensorFile::kBool);
    return config;
}

void writeHeaders(const std::filesystem::path& folder, const std::string& name,
                  SensorFileConfig config, bool binary) {
    for (const bool isOld : {false, true}) {
        config.setHeaderVersion(isOld ? SensorFile::kIntegerFrequencyVersion
                                      : SensorFile::kDefaultHeaderVersion);
        const std::string header = sectionOf(config, binary, Section::kHeader);
        const std::size_t bodyStart = binary ? 16 : header.find('\n') + 1;
        const std::string end = isOld ? "-old" : "";
        writeSeed(folder, name + end, {"\0\0", 2}, openingOf(config, binary) + "samples");
        writeSeed(folder, name + end + "-body", std::string{'\1', isOld ? '\3' : '\1'},
                  header.substr(bodyStart));
    }
}

/// All names of types that text headers may have.
constexpr const char* kNames =
    "23/05/2017\t10:04:31\nSample frequency:\t1e3 (Hz)\n40 column(s):\t"
    "a\tsigned char\t()\tb\tchar\t\tc\tc\t\td\tunsigned char\t\te\tuc\t\tf\tshort\t\t"
    "g\tsigned short\t\th\ts\t\ti\t01\t\tj\tunsigned short\t\tk\tus\t\tl\t00\t\tm\tint8\t\t"
    "n\ti8\t\to\tuint8\t\tp\tunsigned int8\t\tq\tui8\t\tr\tint16\t\ts\ti16\t\tt\tuint16\t\t"
    "u\tunsigned int16\t\tv\tui16\t\tw\tint32\t\tx\ti32\t\ty\ti\t\tz\tuint32\t\t"
    "A\tunsigned int32\t\tB\tui32\t\tC\tui\t\tD\tint64\t\tE\ti64\t\tF\tuint64\t\t"
    "G\tunsigned "
    "int64\t\tH\tui64\t\tI\tfloat\t\tJ\tf\t\tK\tdouble\t\tL\td\t\tM\tbool\t\tN\tb\t\t\n";

void writeTextSeeds(const std::filesystem::path& folder) {
    writeSeed(folder, "names", "\2\1", kNames);
    writeSeed(folder, "many", "\2\1",
              "1/2/3 4-5-6\nSample frequency:\tinf (Hz)\n9223372036854775807 column(s):\ta\ti\t\t");
    writeSeed(folder, "negative", "\2\1",
              "1/2/3 4-5-6\nSample frequency:\tnan (Hz)\n-1 column(s):\t");
}

void writeBinarySeeds(const std::filesystem::path& folder) {
    using std::string_view_literals::operator""sv;
    const std::string column = "\2\1ACCX" + std::string(28, '\0');
    const auto body = "\x4a\0\0\0\0\0\0\0\5\x17\xa\x11\x1f\4\0\0\0\0\0\0\x69\x40\1\0"sv;
    writeSeed(folder, "little-endian", "\2\x15", std::string(body) + column);
    writeSeed(folder, "turned", "\2\5", std::string(body) + column);
    const auto many = "\0\0\0\0\0\0\0\0\x17\5\x11\xa\4\x1f\x40\x69\0\0\0\0\0\0\xff\xff"sv;
    writeSeed(folder, "many", "\2\1", std::string(many) + column);
}

}  // namespace

void writeSeed(const std::filesystem::path& folder, const std::string& name,
               std::string_view choices, std::string_view bytes) {
    std::ofstream(folder / name, std::ios::binary) << choices << bytes;
}

void writeHeaderSeeds(const std::filesystem::path& folder, bool binary) {
    writeHeaders(folder, "types", configOfAllTypes(), binary);
    writeHeaders(folder, "names", configOfOddNames(), binary);
    writeHeaders(folder, "none", configOf({}), binary);
    if (binary) {
        writeBinarySeeds(folder);
    } else {
        writeTextSeeds(folder);
    }
}

}  // namespace Fuzz
