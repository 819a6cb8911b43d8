#include "sensorfile/SensorFileReader.hpp"

#include "sensorfile/ByteOrder.hpp"
#include "sensorfile/ColumnType.hpp"
#include "sensorfile/FormatException.hpp"
#include "sensorfile/NumberText.hpp"

#include <array>
#include <limits>
#include <locale>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

constexpr std::string_view kMessageStart = "Format error in file : '";

std::string formatError(const std::string& path, std::string_view end) {
    return std::string(kMessageStart) + path + std::string(end);
}

}  // namespace

SensorFileReader::SensorFileReader() : SensorFileIo(/*isWriteMode=*/false) {
    stream_.imbue(std::locale::classic());
    stream_.exceptions(std::ios::badbit);
}

void SensorFileReader::open(const std::string& path, bool binary) {
    if (isOpen_) return;
    isBinary_ = binary;
    stream_.clear();
    try {
        block_.open(path);
        isOpen_ = true;
        readSections(path);
        binaryRow_ = BinaryRowCodec(config_);
        textRow_ = TextRowCodec(config_);
        splitRow_.resize(binary ? binaryRow_.rowSize() : 0);
        startSamples();
    } catch (const FormatException& cause) {
        close();
        throw Poco::DataException(formatError(path, "'"), cause);
    } catch (...) {
        close();
        throw;
    }
}

void SensorFileReader::readSections(const std::string& path) {
    switch (config_.readSectionId(stream_, isBinary_)) {
        case SensorFileConfig::kHeaderSection:
            readRecordingSections();
            break;
        case SensorFileConfig::kCalibSection:
            readCalibOnlySection();
            break;
        default:
            throw Poco::DataException(formatError(path, "', check binary mode!"));
    }
    areHeadersValid_ = true;
}

void SensorFileReader::readRecordingSections() {
    if (!config_.readColumns(stream_, isBinary_)) {
        throw FormatException("a column has an impossible size");
    }
    int section = config_.readSectionId(stream_, isBinary_);
    if (section == SensorFileConfig::kCalibSection) {
        config_.readCalibSection(stream_, isBinary_);
        section = config_.readSectionId(stream_, isBinary_);
    }
    if (section != SensorFileConfig::kDataSection) throw FormatException("no data section found");
    sampleStart_ = block_.position();
}

void SensorFileReader::readCalibOnlySection() {
    config_.readCalibSection(stream_, isBinary_);
    sampleStart_ = block_.position();
    config_.setCalibOnly(true);
    if (config_.readSectionId(stream_, isBinary_) != SensorFileConfig::kNoSection) {
        throw FormatException("a section follows the calibration section");
    }
}

bool SensorFileReader::isNextOfType(std::string_view typeName) const {
    return columnCount_ != 0 && config_.getColumn(column_).getTypeName() == typeName;
}

template <typename T>
T SensorFileReader::readTyped() {
    T value{};
    if (!isOpen_) return value;
    if (isBinary_) {
        value = takeBinary<T>();
    } else {
        value = extractText<T>();
    }
    if (columnCount_ != 0) countValue();
    return value;
}

template <typename T>
T SensorFileReader::takeBinary() {
    if constexpr (std::is_same_v<T, bool>) {
        return (takeBinary<unsigned char>() & 1) != 0;
    } else {
        std::array<char, sizeof(T)> bytes{};
        stream_.read(bytes.data(), sizeof(T));
        if (!stream_.good()) return T{};
        return config_.isBigEndian() ? loadAs<T, std::endian::big>(bytes.data())
                                     : loadAs<T, std::endian::little>(bytes.data());
    }
}

/// Stream extraction; and for floating point numbers also "nan" and "inf", which text files hold
/// but streams do not read. After a failure the stream is at its end, so that every loop ends.
template <typename T>
T SensorFileReader::extractText() {
    T value{};
    stream_ >> std::ws;
    const bool isNegative = stream_.good() && stream_.rdbuf()->sgetc() == '-';
    const std::int64_t wordStart = position() + (isNegative ? 1 : 0);
    stream_ >> value;
    if constexpr (std::is_floating_point_v<T>) {
        // Stopped elsewhere, it is the beginning of a number: "1e+nan" is none.
        const bool isWord = stream_.fail() && !stream_.eof() && position() == wordStart;
        if (isWord) value = static_cast<T>(extractNonFinite(isNegative));
    }
    if (!stream_.fail()) return value;
    stream_.setstate(std::ios::eofbit);
    return T{};
}

/// What stream extraction stopped at, behind a minus if there was one. A word that touches the end
/// of the file sets the end-of-file state, as a number does.
double SensorFileReader::extractNonFinite(bool isNegative) {
    std::array<char, 3> word{};
    if (stream_.rdbuf()->sgetn(word.data(), word.size()) != std::streamsize{word.size()}) return 0;
    double value = 0;
    const auto result = parseDouble(word.data(), word.data() + word.size(), value);
    if (result.ec != std::errc{} || (word[0] != 'n' && word[0] != 'i')) return 0;
    stream_.clear();
    stream_.peek();
    return isNegative ? -value : value;
}

bool SensorFileReader::readValue(Poco::Dynamic::Var& value) {
    if (!isOpen_ || isWriteMode_ || columnCount_ == 0) {
        if (isOpen_) stream_.setstate(std::ios::eofbit);
        return false;
    }
    switch (config_.getColumn(column_).getTypeCode()) {
        case kUChar:
            value = readByte();
            break;
        case kChar:
            value = readSByte();
            break;
        case kUShort:
        case kUInt16:
            value = readUInt16();
            break;
        case kShort:
        case kInt16:
            value = readInt16();
            break;
        case kUInt32:
            value = readUInt32();
            break;
        case kInt32:
            value = readInt32();
            break;
        case kFloat:
            value = readFloat();
            break;
        case kDouble:
            value = readDouble();
            break;
        case kUInt8:
            if (isBinary_) {
                value = readByte();
            } else {
                value = readUInt32();
            }
            break;
        case kInt8:
            if (isBinary_) {
                value = readSByte();
            } else {
                value = readInt32();
            }
            break;
        case kUInt64:
            value = static_cast<Poco::UInt64>(readUInt64());
            break;
        case kInt64:
            value = static_cast<Poco::Int64>(readInt64());
            break;
        default:
            value = readBool();
            break;
    }
    return true;
}

bool SensorFileReader::readRow(std::span<double> row) {
    return readWholeRow(row, nullptr);
}

bool SensorFileReader::readRow(std::span<double> row, std::span<std::uint64_t> bits) {
    if (bits.size() != row.size()) {
        throw Poco::InvalidArgumentException("A row needs one value per column!");
    }
    return readWholeRow(row, bits.data());
}

inline bool SensorFileReader::readWholeRow(std::span<double> row, std::uint64_t* bits) {
    if (takeRow(row.data(), bits, row.size())) return true;
    if (!isOpen_ || columnCount_ == 0) return false;
    if (row.size() != columnCount_) {
        throw Poco::InvalidArgumentException("A row needs one value per column!");
    }
    if (column_ != 0) throw Poco::IllegalStateException("A row has been begun value by value!");
    return readRowValues(row.data(), bits);
}

/// Counts a row in any case, as reads value by value do.
bool SensorFileReader::readRowValues(double* row, std::uint64_t* bits) {
    countRow();
    return stream_.good() && (isBinary_ ? readSplitRow(row, bits) : readTextRow(row, bits));
}

/// A binary row that lies across two blocks, or beyond the end.
bool SensorFileReader::readSplitRow(double* row, std::uint64_t* bits) {
    stream_.read(splitRow_.data(), static_cast<std::streamsize>(splitRow_.size()));
    if (!stream_.good()) return false;
    binaryRow_.decode(splitRow_.data(), row);
    if (bits != nullptr) binaryRow_.decodeWide(splitRow_.data(), bits);
    return true;
}

bool SensorFileReader::readTextRow(double* row, std::uint64_t* bits) {
    std::size_t column = 0;
    for (;;) {
        block_.consume(textRow_.parse(block_.cursor(), block_.end(), row, bits, column));
        if (column == columnCount_) return true;
        if (block_.extend()) continue;
        row[column] = extractTextColumn(column, bits == nullptr ? nullptr : bits + column);
        if (!stream_.good()) return false;
        if (++column == columnCount_) return true;
    }
}

template <typename T>
double SensorFileReader::extractWide(std::uint64_t* bits) {
    const T value = extractText<T>();
    if (bits != nullptr) *bits = static_cast<std::uint64_t>(value);
    return static_cast<double>(value);
}

/// One value as the stream reads it: where the file ends, and where the text is unusual.
double SensorFileReader::extractTextColumn(std::size_t column, std::uint64_t* bits) {
    switch (config_.getColumn(column).getTypeCode()) {
        case kUChar:
            return extractText<unsigned char>();
        case kChar:
            return extractText<signed char>();
        case kUShort:
        case kUInt16:
            return extractText<std::uint16_t>();
        case kShort:
        case kInt16:
            return extractText<std::int16_t>();
        case kUInt8:
        case kUInt32:
            return extractText<std::uint32_t>();
        case kInt8:
        case kInt32:
            return extractText<std::int32_t>();
        case kFloat:
            return extractText<float>();
        case kDouble:
            return extractText<double>();
        case kUInt64:
            return extractWide<std::uint64_t>(bits);
        case kInt64:
            return extractWide<std::int64_t>(bits);
        default:
            return extractText<bool>() ? 1.0 : 0.0;
    }
}

template unsigned char SensorFileReader::readTyped();
template signed char SensorFileReader::readTyped();
template std::uint16_t SensorFileReader::readTyped();
template std::int16_t SensorFileReader::readTyped();
template std::uint32_t SensorFileReader::readTyped();
template std::int32_t SensorFileReader::readTyped();
template std::uint64_t SensorFileReader::readTyped();
template std::int64_t SensorFileReader::readTyped();
template float SensorFileReader::readTyped();
template double SensorFileReader::readTyped();
template bool SensorFileReader::readTyped();

unsigned char SensorFileReader::readByte() {
    return readTyped<unsigned char>();
}
signed char SensorFileReader::readSByte() {
    return readTyped<signed char>();
}
std::uint16_t SensorFileReader::readUInt16() {
    return readTyped<std::uint16_t>();
}
std::int16_t SensorFileReader::readInt16() {
    return readTyped<std::int16_t>();
}
std::uint32_t SensorFileReader::readUInt32() {
    return readTyped<std::uint32_t>();
}
std::int32_t SensorFileReader::readInt32() {
    return readTyped<std::int32_t>();
}
std::uint64_t SensorFileReader::readUInt64() {
    return readTyped<std::uint64_t>();
}
std::int64_t SensorFileReader::readInt64() {
    return readTyped<std::int64_t>();
}
float SensorFileReader::readFloat() {
    return readTyped<float>();
}
double SensorFileReader::readDouble() {
    return readTyped<double>();
}
bool SensorFileReader::readBool() {
    return readTyped<bool>();
}

void SensorFileReader::rewind() {
    if (!isOpen_) return;
    stream_.clear();
    block_.seek(sampleStart_);
}

void SensorFileReader::seekRow(std::uint64_t row) {
    if (!isOpen_) return;
    if (!isBinary_) throw Poco::IllegalStateException("Rows of text files cannot be looked up!");
    const auto rowSize = static_cast<std::int64_t>(binaryRow_.rowSize());
    if (rowSize == 0) return;
    const std::int64_t farthest =
        (std::numeric_limits<std::int64_t>::max() - sampleStart_) / rowSize;
    if (row > static_cast<std::uint64_t>(farthest))
        throw Poco::RangeException("No file has so many rows!");
    column_ = 0;
    stream_.clear();
    block_.seek(sampleStart_ + static_cast<std::int64_t>(row) * rowSize);
}

void SensorFileReader::close() {
    resetState();
    block_.close();
}

}  // namespace SensorFile
