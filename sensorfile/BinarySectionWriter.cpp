#include "sensorfile/BinarySectionWriter.hpp"

#include "sensorfile/ByteOrder.hpp"
#include "sensorfile/SensorFileConfig.hpp"
#include "sensorfile/ValueCast.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

#include <Poco/DateTime.h>
#include <Poco/Exception.h>

namespace SensorFile {
namespace {

template <typename T>
void put(std::string& out, T value) {
    std::array<char, sizeof value> bytes;
    storeBigEndian(bytes.data(), value);
    out.append(bytes.data(), bytes.size());
}

void putByte(std::string& out, int value) {
    put(out, static_cast<std::uint8_t>(value & 0xff));
}

/// A count in a field of type T.
template <typename T>
void putCount(std::string& out, std::size_t count, const char* message) {
    if (count > std::numeric_limits<T>::max()) throw Poco::RangeException(message);
    put(out, static_cast<T>(count));
}

void putOpening(std::string& out, std::uint16_t id, std::uint16_t version) {
    for (const std::uint32_t word : kSectionMagic)
        put(out, word);
    put(out, id);
    put(out, version);
}

void putDate(std::string& out, const Poco::DateTime& date) {
    putByte(out, date.day());
    putByte(out, date.month());
    putByte(out, date.year() - kFirstYear);
    putByte(out, date.hour());
    putByte(out, date.minute());
    putByte(out, date.second());
}

/// As far as readers take it: to the first NUL, which names from text files may hold.
void putName(std::string& out, const std::string& name) {
    const std::size_t size = std::min(name.find('\0'), kNameSize);
    out.append(name, 0, size);
    out.append(kNameSize - std::min(size, name.size()), '\0');
}

/// Values in storage order. Bare values have no type in front and are always doubles.
template <typename Matrix>
void putMatrix(std::string& out, const Matrix& matrix, bool isBare) {
    for (Eigen::Index i = 0; i < matrix.size(); ++i) {
        if (isBare) {
            put(out, static_cast<double>(matrix.data()[i]));
        } else {
            put(out, matrix.data()[i]);
        }
    }
}

void putValues(std::string& out, const CalibDataBase& record, bool isBare) {
    if (const auto* doubles = dynamic_cast<const CalibData<Eigen::MatrixXd>*>(&record)) {
        putMatrix(out, doubles->getMatrix(), isBare);
    } else if (const auto* ints = dynamic_cast<const CalibData<Eigen::MatrixXi>*>(&record)) {
        putMatrix(out, ints->getMatrix(), isBare);
    } else {
        throw Poco::DataException("Data format is not supported!");
    }
}

void putRecordHead(std::string& out, const CalibDataBase& record) {
    constexpr const char* kTooLarge = "Calibration matrix is too large for a binary file!";
    putName(out, record.getName());
    putByte(out, record.typeCode());
    putCount<std::uint8_t>(out, record.rows(), kTooLarge);
    putCount<std::uint8_t>(out, record.cols(), kTooLarge);
}

}  // namespace

std::string binaryHeaderSection(const SensorFileConfig& config) {
    std::string out;
    putOpening(out, kHeaderId, config.getHeaderVersion());
    put(out, config.getHeaderSize());
    putDate(out, config.getCreationTime());
    if (config.getHeaderVersion() == kIntegerFrequencyVersion) {
        put(out, static_cast<std::uint16_t>(lowBits(config.getSampleFrequency() + 0.5)));
    } else {
        put(out, config.getSampleFrequency());
    }
    putCount<std::uint16_t>(out, config.getColumnCount(), "Too many columns for a binary file!");
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        const auto& column = config.getColumn(i);
        putByte(out, static_cast<int>(column.getSize()));
        putByte(out, column.getTypeCode());
        putName(out, column.getName());
    }
    return out;
}

std::string binaryCalibSection(const SensorFileConfig& config) {
    const bool isBare = isBareCalibVersion(config.getCalibVersion());
    std::string out;
    putOpening(out, kCalibId, config.getCalibVersion());
    put(out, config.getCalibSectionSize());
    putDate(out, config.getCalibTime());
    if (config.getCalibVersion() == kShortFormatVersion) {
        putByte(out, config.getCalibFormat());
    } else {
        put(out, config.getCalibFormat());
    }
    if (!isBare) put(out, std::uint64_t{config.getCalibCount()});
    for (std::size_t i = 0; i < config.getCalibCount(); ++i) {
        const CalibDataBase& record = config.getCalibData(i);
        if (!isBare) putRecordHead(out, record);
        putValues(out, record, isBare);
    }
    return out;
}

std::string binaryDataSection(const SensorFileConfig& config) {
    std::string out;
    putOpening(out, kDataId, config.getDataVersion());
    return out;
}

}  // namespace SensorFile
