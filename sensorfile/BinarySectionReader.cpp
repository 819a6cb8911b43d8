#include "sensorfile/BinarySectionReader.hpp"

#include "sensorfile/BareCalibValues.hpp"
#include "sensorfile/ByteOrder.hpp"
#include "sensorfile/ColumnType.hpp"
#include "sensorfile/FormatException.hpp"
#include "sensorfile/SensorFileConfig.hpp"

#include <algorithm>
#include <array>
#include <bit>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

template <typename T>
T load(const char* bytes, bool isBigEndian) {
    return isBigEndian ? loadAs<T, std::endian::big>(bytes) : loadAs<T, std::endian::little>(bytes);
}

}  // namespace

/// False at the end of the data; the stream then says so.
bool BinarySectionReader::takeBytes(char* bytes, std::size_t count) {
    const auto wanted = static_cast<std::streamsize>(count);
    if (stream_.good() && stream_.rdbuf()->sgetn(bytes, wanted) == wanted) return true;
    stream_.setstate(std::ios::eofbit | std::ios::failbit);
    return false;
}

template <typename T>
T BinarySectionReader::take() {
    std::array<char, sizeof(T)> bytes;
    if (!takeBytes(bytes.data(), bytes.size())) throw FormatException("section ends early");
    return load<T>(bytes.data(), config_.isBigEndian());
}

int BinarySectionReader::takeByte() {
    return take<std::uint8_t>();
}

SectionOpening BinarySectionReader::readOpening() {
    std::array<char, 16> bytes;
    if (!takeBytes(bytes.data(), 12)) return {};
    bool isBigEndian = config_.isBigEndian();
    if (load<std::uint32_t>(bytes.data(), isBigEndian) == kSwappedMagic) isBigEndian = !isBigEndian;
    for (std::size_t i = 0; i < kSectionMagic.size(); ++i) {
        if (load<std::uint32_t>(&bytes[4 * i], isBigEndian) != kSectionMagic[i]) return {};
    }
    if (!takeBytes(&bytes[12], 4)) return {};
    config_.setBigEndian(isBigEndian);
    return {load<std::uint16_t>(&bytes[12], isBigEndian),
            load<std::uint16_t>(&bytes[14], isBigEndian)};
}

std::string BinarySectionReader::takeName() {
    std::array<char, kNameSize> bytes;
    if (!takeBytes(bytes.data(), bytes.size())) throw FormatException("section ends early");
    return {bytes.begin(), std::find(bytes.begin(), bytes.end(), '\0')};
}

SectionDate BinarySectionReader::takeDate(bool isCoded) {
    std::array<int, 6> bytes;
    for (int& byte : bytes) {
        byte = takeByte();
        if (isCoded) byte = (byte >> 4) * 10 + (byte & 0xf);
    }
    const auto [b0, b1, b2, b3, b4, b5] = bytes;
    SectionDate date = config_.isBigEndian() ? SectionDate{b2, b1, b0, b3, b4, b5}
                                             : SectionDate{b3, b0, b1, b2, b5, b4};
    date.year += kFirstYear;
    date.month = std::max(date.month, 1);
    date.day = std::max(date.day, 1);
    return date;
}

bool BinarySectionReader::readHeader() {
    take<std::uint64_t>();  // the section's size, which follows from the column count
    config_.setCreationTime(takeDate(/*isCoded=*/false).toDateTime());
    config_.setSampleFrequency(config_.getHeaderVersion() == kIntegerFrequencyVersion
                                   ? take<std::uint16_t>()
                                   : take<double>());
    const auto count = take<std::uint16_t>();
    for (unsigned i = 0; i < count; ++i) {
        const auto size = static_cast<unsigned>(takeByte());
        const auto kind = static_cast<unsigned>(takeByte());
        const std::optional<int> typeCode = columnTypeFromBinary(size, kind);
        if (!typeCode) return false;
        config_.addColumn(takeName(), *typeCode);
    }
    return true;
}

void BinarySectionReader::readCalib() {
    const std::uint16_t version = config_.getCalibVersion();
    const auto sectionSize = take<std::uint64_t>();
    // The section's opening and size are in the file's order, the rest is little-endian.
    if (version == kCodedCalibVersion) config_.setBigEndian(false);
    config_.setCalibTime(takeDate(version == kCodedCalibVersion).toDateTime());
    config_.setCalibFormat(version == kShortFormatVersion ? take<std::uint8_t>()
                                                          : take<std::uint16_t>());
    if (isBareCalibVersion(version)) {
        readBareValues(sectionSize);
        return;
    }
    const auto count = take<std::uint64_t>();
    for (std::uint64_t i = 0; i < count; ++i)
        readRecord();
}

void BinarySectionReader::readRecord() {
    const std::string name = takeName();
    switch (takeByte()) {
        case kDouble:
            readMatrix<double>(name);
            break;
        case kInt32:
            readMatrix<int>(name);
            break;
        default:
            throw Poco::DataException("Data type format is not supported!");
    }
}

template <typename T>
void BinarySectionReader::readMatrix(const std::string& name) {
    const int rows = takeByte();
    const int cols = takeByte();
    Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic> matrix(rows, cols);
    for (Eigen::Index i = 0; i < matrix.size(); ++i)
        matrix.data()[i] = take<T>();
    config_.addCalibData(name, matrix);
}

void BinarySectionReader::readBareValues(std::uint64_t sectionSize) {
    const std::uint16_t version = config_.getCalibVersion();
    const std::uint64_t headSize =
        version == kShortFormatVersion ? kCalibBaseSize - 1 : kCalibBaseSize;
    if (sectionSize < headSize) throw FormatException("calibration section size is too small");
    const std::uint64_t count = (sectionSize - headSize) / sizeof(double);
    BareCalibValues values(config_, version);
    for (std::uint64_t i = 0; i < count; ++i) {
        values.add(version == kCodedCalibVersion ? takeCodedDouble() : take<double>());
    }
}

/// Four 16-bit words, the highest first.
double BinarySectionReader::takeCodedDouble() {
    std::uint64_t bits = 0;
    for (int i = 0; i < 4; ++i)
        bits = (bits << 16) | take<std::uint16_t>();
    return std::bit_cast<double>(bits);
}

}  // namespace SensorFile
