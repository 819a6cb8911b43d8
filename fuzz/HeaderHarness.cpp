#include "fuzz/HeaderHarness.hpp"

#include "fuzz/Harness.hpp"
#include "sensorfile/SectionFormat.hpp"

#include <Poco/Exception.h>

namespace Fuzz {

namespace {

using SensorFile::SensorFileConfig;
using SensorFile::SensorFileReader;

std::string openingBytes(std::uint16_t id, std::uint16_t version, bool binary, bool isBigEndian) {
    if (binary) return binaryOpening(id, version, isBigEndian);
    const std::string digits = version == SensorFile::kIntegerFrequencyVersion ? "0100" : "0101";
    return id == SensorFile::kHeaderId
               ? "Header id: \taf243246\t56fe1289\t9078bc29\t8034" + digits + "\t\n"
               : "\nData id: \taf243246\t56fe1289\t9078bc29\t80350100\t\n";
}

std::string fileOf(Input& input, bool binary) {
    const unsigned choice = input.choice();
    const bool isBigEndian = (choice & 4) == 0;
    std::string bytes;
    if ((choice & 1) == 0) return std::string(input.rest());
    bytes += openingBytes(SensorFile::kHeaderId,
                          (choice & 2) != 0 ? SensorFile::kIntegerFrequencyVersion
                                            : SensorFile::kDefaultHeaderVersion,
                          binary, isBigEndian);
    bytes += input.rest();
    if ((choice & 8) != 0) return bytes;
    bytes += openingBytes(SensorFile::kDataId, SensorFile::kDefaultDataVersion, binary,
                          (choice & 16) == 0);
    if ((choice & 32) == 0) bytes.append(40, '1');
    return bytes;
}

bool canBeWrittenAsText(const SensorFileConfig& config) {
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        if (config.getColumn(i).getName().find('\t') != std::string::npos) return false;
    }
    return true;
}

bool canBeWrittenAsBinary(const SensorFileConfig& config) {
    const int year = config.getCreationTime().year();
    return config.getColumnCount() < 0x10000 && year >= 2000 && year < 2256;
}

/// Type by type, and the names as far as both encodings hold them.
void requireSameColumns(const SensorFileConfig& a, const SensorFileConfig& b) {
    require(a.getColumnCount() == b.getColumnCount(), "another number of columns");
    for (std::size_t i = 0; i < a.getColumnCount(); ++i) {
        const std::string& name = a.getColumn(i).getName();
        const std::string cut = name.substr(0, std::min(name.find('\0'), SensorFile::kNameSize));
        require(b.getColumn(i).getName() == name || b.getColumn(i).getName() == cut,
                "another name of a column");
        require(a.getColumn(i).getTypeCode() == b.getColumn(i).getTypeCode(),
                "another type of a column");
    }
}

/// What was read, written and read again.
void writeAndReadAgain(const SensorFileConfig& config, bool binary) {
    const std::string second = openingOf(config, binary);
    const auto again = parseSections(second, binary);
    require(again.has_value(), "what was written is refused");
    require(openingOf(*again, binary) == second, "written again it differs");
    requireSameColumns(config, *again);
}

/// Calibrations of raw files are another harness's: bare values do not come back from text.
SensorFileConfig withoutCalib(SensorFileConfig config) {
    config.clearCalibData();
    config.setCalibTime(config.getCreationTime());
    config.setCalibVersion(SensorFile::kDefaultCalibVersion);
    return config;
}

void tryBothEncodings(const SensorFileConfig& config, bool binary) {
    if (binary ? canBeWrittenAsBinary(config) : canBeWrittenAsText(config))
        writeAndReadAgain(config, binary);
    if (binary ? canBeWrittenAsText(config) : canBeWrittenAsBinary(config))
        writeAndReadAgain(config, !binary);
}

/// The end comes, and it stays.
void readToEnd(SensorFileReader& reader, std::size_t fileSize) {
    std::vector<double> row(reader.getConfig().getColumnCount());
    std::size_t count = 0;
    while (reader.readRow(row))
        require(++count <= fileSize, "more rows than bytes");
    require(row.empty() || reader.isEof(), "reading ended before the end");
    require(!reader.readRow(row), "a row behind the end");
}

}  // namespace

void tryHeader(Input input, bool binary) {
    setUp(input.choice());
    const std::string bytes = fileOf(input, binary);
    static SensorFileReader reader;
    if (!openAsParsed(reader, bytes, binary)) return;
    readToEnd(reader, bytes.size());
    const SensorFileConfig config = reader.getConfig();
    reader.close();
    if (!config.isCalibOnly()) tryBothEncodings(withoutCalib(config), binary);
}

}  // namespace Fuzz
