/// Reads hostile calibration sections of each version in both encodings: raw, or behind an opening
/// of ours, alone or in a recording.
///
/// Beyond "no crash": a file gives what memory gives; bare values are where a plain look at the
/// bytes finds them; what was read can be written and read again without a change, in the other
/// encoding as well.

#include "fuzz/FileHarness.hpp"
#include "fuzz/Harness.hpp"
#include "sensorfile/SectionFormat.hpp"

#include <array>
#include <bit>
#include <cmath>
#include <limits>

namespace {

using Fuzz::Parts;
using SensorFile::SensorFileConfig;
using SensorFile::SensorFileReader;

constexpr std::array<std::uint16_t, 4> kVersions = {0x0200, 0x0101, 0x0100, 0x8101};

struct Case {
    bool isBinary;
    bool isRaw;
    bool isBigEndian;
    bool isCalibOnly;
    std::uint16_t version;
    std::string_view body;
};

Case caseOf(Fuzz::Input& input) {
    const unsigned choice = input.choice();
    return {(choice & 1) != 0,
            (choice & 2) != 0,
            (choice & 4) == 0,
            (choice & 8) == 0,
            kVersions[(choice >> 4) & 3],
            input.rest()};
}

std::string openingOf(const Case& input) {
    if (input.isBinary)
        return Fuzz::binaryOpening(SensorFile::kCalibId, input.version, input.isBigEndian);
    constexpr const char* kDigits = "0123456789abcdef";
    std::string opening = "Calib id: \taf243246\t56fe1289\t9078bc29\t8036";
    for (const int shift : {12, 8, 4, 0})
        opening += kDigits[(input.version >> shift) & 0xf];
    return opening + "\t\n";
}

std::string fileOf(const Case& input) {
    if (input.isRaw) return std::string(input.body);
    std::string section = openingOf(input);
    section += input.body;
    if (input.isCalibOnly) return section;
    static const SensorFileConfig kConfig = Fuzz::configOf({SensorFile::kInt16});
    static const std::array<std::string, 2> kHeaders = {
        Fuzz::sectionOf(kConfig, false, Fuzz::Section::kHeader),
        Fuzz::sectionOf(kConfig, true, Fuzz::Section::kHeader)};
    static const std::array<std::string, 2> kData = {
        Fuzz::sectionOf(kConfig, false, Fuzz::Section::kData),
        Fuzz::sectionOf(kConfig, true, Fuzz::Section::kData)};
    const std::size_t encoding = input.isBinary ? 1 : 0;
    return kHeaders[encoding] + section + kData[encoding];
}

/// Numbers of a binary section, byte by byte.
class Bytes {
 public:
    Bytes(std::string_view bytes, bool isBigEndian) : bytes_(bytes), isBigEndian_(isBigEndian) {}

    [[nodiscard]] std::uint64_t at(std::size_t offset, std::size_t size) const {
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const std::size_t place = isBigEndian_ ? i : size - 1 - i;
            number = number << 8 | static_cast<unsigned char>(bytes_.at(offset + place));
        }
        return number;
    }

 private:
    std::string_view bytes_;
    bool isBigEndian_;
};

double bareValue(const Case& input, std::size_t index) {
    const bool isCoded = input.version == SensorFile::kCodedCalibVersion;
    const Bytes bytes(input.body, input.isBigEndian && !isCoded);
    const std::size_t first = input.version == SensorFile::kShortFormatVersion ? 15 : 16;
    const std::size_t offset = first + 8 * index;
    if (!isCoded) return std::bit_cast<double>(bytes.at(offset, 8));
    std::uint64_t bits = 0;
    for (std::size_t word = 0; word < 4; ++word)
        bits = bits << 16 | bytes.at(offset + 2 * word, 2);
    return std::bit_cast<double>(bits) * (index < 9 ? 2 : 1);
}

/// Records of bare values, by a plain look at the bytes.
void lookAtBareValues(const Case& input, const SensorFileConfig& config) {
    const std::size_t head = input.version == SensorFile::kShortFormatVersion ? 31 : 32;
    const std::uint64_t size = Bytes(input.body, input.isBigEndian).at(0, 8);
    const std::uint64_t count = (size - head) / 8;
    std::size_t records = 0;
    for (std::size_t group = 0; group < 3; ++group) {
        if (count >= 12 * group + 9) ++records;
        if (count >= 12 * group + 12) ++records;
    }
    Fuzz::require(config.getCalibCount() == records, "another number of records");
    for (std::size_t i = 0; i < records; ++i) {
        const bool isGain = i % 2 == 0;
        const std::string name = (isGain ? "Gain" : "Offset") + std::to_string(i / 2 + 1);
        const auto& record =
            dynamic_cast<const SensorFile::CalibData<Eigen::MatrixXd>&>(config.getCalibData(i));
        Fuzz::require(
            record.getName() == name && record.rows() == (isGain ? 3 : 1) && record.cols() == 3,
            "another record");
        const bool isRowByRow = !isGain || input.version == SensorFile::kCodedCalibVersion;
        for (Eigen::Index place = 0; place < (isGain ? 9 : 3); ++place) {
            const double value = isRowByRow ? record.getMatrix()(place / 3, place % 3)
                                            : record.getMatrix()(place % 3, place / 3);
            const std::size_t index =
                12 * (i / 2) + (isGain ? 0 : 9) + static_cast<std::size_t>(place);
            Fuzz::require(Fuzz::isSame(value, bareValue(input, index)), "another value");
        }
    }
}

/// What text cannot hold: other names come back otherwise, and 15 digits of the largest doubles are
/// beyond them.
bool canBeWrittenAsText(const SensorFileConfig& config) {
    constexpr double kLargest = 1.79769313486231e308;
    for (std::size_t i = 0; i < config.getCalibCount(); ++i) {
        const std::string& name = config.getCalibName(i);
        if (name.empty() || name.find('\t') != std::string::npos || name[0] == ' ' ||
            (name[0] >= '\t' && name[0] <= '\r'))
            return false;
        const auto* record =
            dynamic_cast<const SensorFile::CalibData<Eigen::MatrixXd>*>(&config.getCalibData(i));
        if (record == nullptr) continue;
        for (Eigen::Index k = 0; k < record->getMatrix().size(); ++k) {
            const double magnitude = std::abs(record->getMatrix().data()[k]);
            if (magnitude > kLargest && magnitude < std::numeric_limits<double>::infinity())
                return false;
        }
    }
    return true;
}

bool canBeWrittenAsBinary(const SensorFileConfig& config) {
    for (std::size_t i = 0; i < config.getCalibCount(); ++i) {
        if (config.getCalibData(i).rows() > 255 || config.getCalibData(i).cols() > 255)
            return false;
    }
    const int year = config.getCalibTime().year();
    return year >= 2000 && year < 2256;
}

void writeAndReadAgain(const SensorFileConfig& config, bool binary, bool isExact) {
    const std::string second = Fuzz::sectionOf(config, binary, Fuzz::Section::kCalib);
    const auto again = Fuzz::parseSections(second, binary);
    Fuzz::require(again.has_value(), "what was written is refused");
    Fuzz::require(Fuzz::sectionOf(*again, binary, Fuzz::Section::kCalib) == second,
                  "written again it differs");
    Fuzz::require(again->getCalibCount() == config.getCalibCount(), "another number of records");
    if (isExact)
        Fuzz::require(Fuzz::bitsOf(*again, Parts::kColumnsAndRecords) ==
                          Fuzz::bitsOf(config, Parts::kColumnsAndRecords),
                      "other records than before");
}

/// A calibration file of the same records.
SensorFileConfig calibOf(const SensorFileConfig& config) {
    SensorFileConfig calib;
    calib.setCalibOnly(true);
    calib.setCalibVersion(config.getCalibVersion());
    calib.setCalibFormat(config.getCalibFormat());
    calib.setCalibTime(config.getCalibTime());
    for (std::size_t i = 0; i < config.getCalibCount(); ++i)
        calib.addCalibData(config.getCalibData(i).clone());
    return calib;
}

/// Binary records cut long names of text files; the section's size counts what they were before.
SensorFileConfig withCutNames(const SensorFileConfig& calib) {
    const auto again = Fuzz::parseSections(
        Fuzz::sectionOf(calib, /*binary=*/true, Fuzz::Section::kCalib), /*binary=*/true);
    Fuzz::require(again.has_value(), "what was written from text is refused");
    return *again;
}

void tryBothEncodings(SensorFileConfig calib, bool isBinary) {
    const std::uint16_t version = calib.getCalibVersion();
    const bool canBeBinary = canBeWrittenAsBinary(calib);
    // Bare values that text holds come back with rows and columns exchanged, those of 0x8101 are
    // for reading alone: named records are what they are best written as.
    if (isBinary && SensorFile::isBareCalibVersion(version) &&
        version != SensorFile::kCodedCalibVersion)
        writeAndReadAgain(calib, /*binary=*/true, /*isExact=*/true);
    calib.setCalibVersion(SensorFile::kDefaultCalibVersion);
    if (canBeBinary)
        writeAndReadAgain(isBinary ? calib : withCutNames(calib), /*binary=*/true,
                          /*isExact=*/true);
    if (canBeWrittenAsText(calib)) writeAndReadAgain(calib, /*binary=*/false, /*isExact=*/false);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input bytes(data, size);
    Fuzz::setUp(bytes.choice());
    const Case input = caseOf(bytes);
    static SensorFileReader reader;
    if (!Fuzz::openAsParsed(reader, fileOf(input), input.isBinary)) return 0;
    const SensorFileConfig config = reader.getConfig();
    reader.close();
    if (input.isBinary && !input.isRaw && SensorFile::isBareCalibVersion(input.version))
        lookAtBareValues(input, config);
    tryBothEncodings(calibOf(config), input.isBinary);
    return 0;
}
