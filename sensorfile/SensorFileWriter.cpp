#include "sensorfile/SensorFileWriter.hpp"

#include "sensorfile/ColumnType.hpp"

#include <algorithm>
#include <cstring>
#include <locale>
#include <sstream>

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

/// A row waits in memory until one comes that is younger by this much. Half of the half second
/// that is promised, for the clock's coarse steps.
constexpr std::chrono::milliseconds kMaxWait{250};

/// Rows within a step of the clock (1 to 16 ms) that make a recording a fast one, and how many of
/// its rows share one look at the clock.
constexpr std::uint32_t kFastRowsInStep = 256;
constexpr std::uint32_t kRowsPerLook = 8;

/// So many values of a text row look for room together; more would keep a block half empty.
constexpr std::size_t kValuesPerRoom = 8;

/// Text columns of floating point numbers show no zeros that say nothing.
std::string withoutTrailingZeros(std::string text) {
    if (text.find('.') == std::string::npos) return text;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

/// Low 8 bits of whatever number the Var holds.
std::uint8_t lowByte(const Poco::Dynamic::Var& value) {
    if (value.isInteger() && !value.isSigned()) {
        return static_cast<std::uint8_t>(value.convert<Poco::UInt64>() & 0xff);
    }
    if (value.isInteger()) return static_cast<std::uint8_t>(value.convert<Poco::Int64>() & 0xff);
    return static_cast<std::uint8_t>(lowBits(value.convert<double>()) & 0xff);
}

}  // namespace

SensorFileWriter::SensorFileWriter() : SensorFileIo(/*isWriteMode=*/true) {
    stream_.imbue(std::locale::classic());
    stream_.exceptions(std::ios::badbit);
}

SensorFileWriter::~SensorFileWriter() {
    closeQuietly();
}

/// Where an error cannot be told or another one is on its way; the file is closed in any case.
void SensorFileWriter::closeQuietly() noexcept {
    try {
        close();
    } catch (const Poco::Exception&) {
        return;
    }
}

void SensorFileWriter::open(const std::string& path, const SensorFileConfig& config, bool binary,
                            bool writeHeaders) {
    if (isOpen_) return;
    isBinary_ = binary;
    refusedRowCount_ = 0;
    areTextRowsWaiting_ = false;
    isRowWaiting_ = false;
    rowsPerLook_ = 1;
    rowsSinceLook_ = 0;
    rowsInStep_ = 0;
    clock_ = &Clock::current();
    block_.open(path);
    isOpen_ = true;
    try {
        prepareRows(config);
        if (writeHeaders) this->writeHeaders(config);
    } catch (...) {
        closeQuietly();
        throw;
    }
}

void SensorFileWriter::writeHeaders(const SensorFileConfig& config) {
    if (!isOpen_) return;
    SensorFileConfig completed = config;
    if (!completed.hasCreationTime() && !completed.isCalibOnly()) {
        completed.setCreationTime(clock_->now());
    }
    if (!completed.hasCalibTime()) completed.setCalibTime(clock_->now());
    std::ostringstream sections;
    completed.writeHeaderSection(sections, isBinary_);
    completed.writeCalibSection(sections, isBinary_);
    completed.writeDataSection(sections, isBinary_);

    const std::string bytes = sections.str();
    block_.commit(std::copy(bytes.begin(), bytes.end(), block_.reserve(bytes.size())));
    prepareRows(completed);
    areHeadersValid_ = true;
    block_.flushRows();
}

void SensorFileWriter::prepareRows(const SensorFileConfig& config) {
    config_ = config;
    config_.setBigEndian(true);
    binaryRow_ = BinaryRowCodec(config_);
    textRow_ = TextRowCodec(config_);
    startSamples();
    heldRow_.assign(isBinary_ ? columnCount_ : 0, 0.0);
    isRowHeld_ = column_ == 0 && !heldRow_.empty();
    block_.startRows(isBinary_ ? binaryRow_.rowSize() : 0);
}

/// The last value counts only when the row has found room: it can be written again then.
void SensorFileWriter::writeHeldRow() {
    --column_;
    block_.reserve(binaryRow_.rowSize());
    column_ = 0;
    writeBinaryRow(heldRow_.data(), nullptr);
}

/// Before anything but a plain value follows within a row, and before the file is closed.
void SensorFileWriter::releaseHeldRow() {
    if (!isRowHeld_ || column_ == 0) return;
    char* out = block_.reserve(binaryRow_.rowSize());
    for (std::uint32_t i = 0; i < column_; ++i)
        out = binaryRow_.encodeValue(i, heldRow_[i], out);
    block_.commit(out);
    isRowHeld_ = false;
}

template <typename T>
void SensorFileWriter::writeNumber(T value) {
    if (!isBinary_) {
        writeTextNumber(value);
        return;
    }
    releaseHeldRow();
    isRowHeld_ = false;
    char* const out = block_.reserve(BinaryRowCodec::kMaxValueSize);
    block_.commit(binaryRow_.encodeValue(column_, value, out));
    if (!countValue()) return;
    isRowHeld_ = true;
    block_.markRow();
    endBinaryRow();
}

template void SensorFileWriter::writeNumber(double);
template void SensorFileWriter::writeNumber(float);
template void SensorFileWriter::writeNumber(std::int64_t);
template void SensorFileWriter::writeNumber(std::uint64_t);

template <typename T>
void SensorFileWriter::writeTextNumber(T value) {
    try {
        char* const out = block_.reserve(textRow_.maxValueSize() + 2);
        char* end = textRow_.format(column_, value, out);
        *end++ = '\t';
        block_.commit(end);
    } catch (const Poco::Exception&) {
        refuseRow();
        throw;
    }
    if (countValue()) endTextRow();
}

void SensorFileWriter::writeRow(std::span<const double> row) {
    if (isRowHeld_ && column_ == 0 && row.size() == columnCount_) {
        writeBinaryRow(row.data(), nullptr);
    } else {
        writeUnusualRow(row, nullptr);
    }
}

void SensorFileWriter::writeRow(std::span<const double> row, std::span<const std::uint64_t> bits) {
    if (bits.size() != row.size()) {
        throw Poco::InvalidArgumentException("A row needs one value per column!");
    }
    writeUnusualRow(row, bits.data());
}

void SensorFileWriter::writeRowBytes(std::string_view rows) {
    if (column_ != 0) throw Poco::IllegalStateException("A row has been begun value by value!");
    const std::size_t rowSize = isBinary_ ? binaryRow_.rowSize() : 0;
    const bool isWhole = rowSize != 0 ? rows.size() % rowSize == 0 : rows.ends_with('\n');
    if (!isWhole && !rows.empty())
        throw Poco::InvalidArgumentException("The bytes end within a row!");
    block_.commit(std::copy(rows.begin(), rows.end(), block_.reserve(rows.size())));
    block_.markRow();
    if (!isBinary_ && !areTextRowsWaiting_) block_.flushRows();
}

/// Text, and what is refused. On its own, so that the usual case stays short.
void SensorFileWriter::writeUnusualRow(std::span<const double> row, const std::uint64_t* bits) {
    if (row.size() != columnCount_) {
        throw Poco::InvalidArgumentException("A row needs one value per column!");
    }
    if (columnCount_ == 0) throw Poco::InvalidAccessException("The file has no columns.");
    if (column_ != 0) throw Poco::IllegalStateException("A row has been begun value by value!");
    if (isBinary_) {
        writeBinaryRow(row.data(), bits);
    } else {
        writeTextRow(row, bits);
    }
}

inline void SensorFileWriter::writeBinaryRow(const double* row, const std::uint64_t* bits) {
    const std::size_t size = binaryRow_.rowSize();
    char* const out = block_.reserve(size);
    binaryRow_.encode(row, out);
    if (bits != nullptr) binaryRow_.encodeWide(bits, out);
    block_.commitRow(size);
    countRow();
    endBinaryRow();
}

void SensorFileWriter::writeTextRow(std::span<const double> row, const std::uint64_t* bits) {
    try {
        for (std::size_t first = 0; first < row.size(); first += kValuesPerRoom) {
            const auto values = row.subspan(first, std::min(row.size() - first, kValuesPerRoom));
            char* const out = block_.reserve(values.size() * (textRow_.maxValueSize() + 1) + 1);
            block_.commit(textRow_.formatValues(first, values, bits, out));
        }
    } catch (const Poco::Exception&) {
        refuseRow();
        throw;
    }
    countRow();
    endTextRow();
}

/// Takes the begun row back: half a row would shift every column behind it.
void SensorFileWriter::refuseRow() {
    if (columnCount_ == 0) return;
    block_.dropRow();
    column_ = 0;
    ++refusedRowCount_;
}

void SensorFileWriter::endTextRow() {
    char* const out = block_.reserve(1);
    *out = '\n';
    block_.commit(out + 1);
    block_.markRow();
    if (!areTextRowsWaiting_) block_.flushRows();
}

inline void SensorFileWriter::endBinaryRow() {
    if (++rowsSinceLook_ >= rowsPerLook_) lookAtClock();
}

/// Even a coarse clock costs as much as packing half a row. Rows that are much faster than any
/// sensor, so many within one step of the clock, are looked at in groups.
void SensorFileWriter::lookAtClock() {
    const auto now = clock_->steady();
    rowsInStep_ += rowsSinceLook_;
    rowsSinceLook_ = 0;
    if (now != lastLook_) {
        rowsPerLook_ = rowsInStep_ >= kFastRowsInStep ? kRowsPerLook : 1;
        rowsInStep_ = 0;
        lastLook_ = now;
    }
    if (!isRowWaiting_) {
        isRowWaiting_ = true;
        waitingSince_ = now;
    } else if (now - waitingSince_ >= kMaxWait) {
        flush();
    }
}

void SensorFileWriter::writeText(std::string_view text) {
    releaseHeldRow();
    char* const out = block_.reserve(text.size() + 2);
    char* end = std::copy(text.begin(), text.end(), out);
    *end++ = '\t';
    const bool isLast = columnCount_ != 0 && column_ + 1 == columnCount_;
    if (isLast) *end++ = '\n';
    block_.commit(end);
    if (isLast || column_ == 0) block_.markRow();
    if (isLast) block_.flushRows();
}

template <typename T>
void SensorFileWriter::writePrimitive(const T& value) {
    releaseHeldRow();
    stream_.clear();  // an earlier failure must not swallow this value
    binaryWriter_ << value;
    if (column_ == 0) block_.markRow();
}

void SensorFileWriter::writeByte(std::uint8_t value) {
    writePrimitive(value);
}
void SensorFileWriter::writeUInt16(std::uint16_t value) {
    writePrimitive(value);
}
void SensorFileWriter::writeUInt32(std::uint32_t value) {
    writePrimitive(value);
}
void SensorFileWriter::writeUInt64(std::uint64_t value) {
    writePrimitive(static_cast<Poco::UInt64>(value));
}
void SensorFileWriter::writeFloat(float value) {
    writePrimitive(value);
}
void SensorFileWriter::writeDouble(double value) {
    writePrimitive(value);
}
void SensorFileWriter::writeString(const std::string& value) {
    writePrimitive(value);
}

std::string SensorFileWriter::formatValue(std::size_t columnIndex, const Poco::Dynamic::Var& value,
                                          bool binary) const {
    if (columnIndex >= config_.getColumnCount()) return {};
    const Column& column = config_.getColumn(columnIndex);
    if (binary) return column.getType().toBytes(value);
    switch (column.getTypeCode()) {
        case kUInt8:
            return std::to_string(unsigned{lowByte(value)});
        case kInt8:
            return std::to_string(int{static_cast<std::int8_t>(lowByte(value))});
        case kFloat:
        case kDouble:
            return withoutTrailingZeros(
                column.getType().toText(value, config_.getDoublePrecision()));
        default:
            return column.getType().toText(value, config_.getDoublePrecision());
    }
}

void SensorFileWriter::flush() {
    isRowWaiting_ = false;
    block_.flushRows();
}

void SensorFileWriter::close() {
    if (!isOpen_) return;
    const auto finish = [this] {
        resetState();
        isRowHeld_ = false;
        binaryRow_ = BinaryRowCodec();
        textRow_ = TextRowCodec();
        block_.close();
    };
    try {
        releaseHeldRow();
    } catch (const Poco::Exception&) {
        finish();
        throw;
    }
    finish();
}

}  // namespace SensorFile
