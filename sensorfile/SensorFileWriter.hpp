#pragma once

#include "sensorfile/BinaryRowCodec.hpp"
#include "sensorfile/Clock.hpp"
#include "sensorfile/OutputBlock.hpp"
#include "sensorfile/SensorFileIo.hpp"
#include "sensorfile/TextRowCodec.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <Poco/BinaryWriter.h>
#include <Poco/Dynamic/Var.h>

namespace SensorFile {

/// Creates a sensor file: open(), writeHeaders() (unless open() did it), values or rows, close().
///
/// Rows stay whole: a row of which a value is refused is not written at all. When the disk is full,
/// rows that were taken wait in memory and go out when there is space again; further ones are
/// refused whole, and close() cuts the file back to its last whole row. Text rows reach the system
/// one by one; binary rows wait in memory, but never longer than until a row that is half a second
/// younger. (When a recording of ten thousands of rows a second suddenly slows down, up to seven
/// rows later.) Not thread-safe: one thread at a time uses a writer.
class SensorFileWriter : public SensorFileIo {
 public:
    SensorFileWriter();
    /// Closes the file; an error is swallowed, so call close() where it matters.
    ~SensorFileWriter();

    /// Creates or empties the file. Does nothing if already open.
    /// @throws Poco::FileException (or one derived) naming the path; the writer is closed then and
    ///         its configuration the default one
    void open(const std::string& path, const SensorFileConfig& config, bool binary,
              bool writeHeaders);

    /// Takes the configuration and writes header, calibration and data sections as it asks for.
    /// Missing dates become the present time, in the writer's copy alone. Does nothing if closed.
    /// @throws Poco::DataException, Poco::RangeException as SensorFileConfig's writers do; nothing
    ///         is written then
    void writeHeaders(const SensorFileConfig& config);

    /// Appends one value, converted to the type of its column.
    ///
    /// Binary truncates toward zero and keeps the low bits; NaN and infinity give 0 in integer
    /// columns. In text a value that does not fit its column is refused.
    /// @throws Poco::RangeException if refused; the values of this row so far are taken back and
    ///         the row starts anew
    /// @throws Poco::InvalidAccessException if there are no columns, as in a closed writer
    /// @throws Poco::FileException if the file cannot take more
    template <typename T>
    requires std::is_arithmetic_v<T>
    void write(T value) {
        if constexpr (kIsExactInDouble<T>) {
            if (isRowHeld_) {
                holdValue(static_cast<double>(value));
                return;
            }
        }
        if constexpr (std::is_same_v<T, float>) {
            writeNumber(value);
        } else if constexpr (std::is_floating_point_v<T>) {
            writeNumber(static_cast<double>(value));
        } else if constexpr (std::is_signed_v<T>) {
            writeNumber(static_cast<std::int64_t>(value));
        } else {
            writeNumber(static_cast<std::uint64_t>(value));
        }
    }

    /// Appends a whole row: the same bytes as write<double>() for each of its values.
    /// @param row one value per column
    /// @throws Poco::InvalidArgumentException if the size differs from the column count
    /// @throws Poco::IllegalStateException if a row has been begun value by value
    /// @throws as write(); nothing of the row is written then
    void writeRow(std::span<const double> row);

    /// The same with the exact 64-bit integers, of which the values hold large ones only rounded.
    /// @param bits one number per column; used are those of columns of type "uint64" and "int64"
    void writeRow(std::span<const double> row, std::span<const std::uint64_t> bits);

    /// Appends whole rows as they stand in another file of the same columns and encoding: binary
    /// ones big-endian, text ones with a line end behind each. They are not looked at.
    /// @throws Poco::InvalidArgumentException if the bytes end within a row: binary ones are no
    ///         multiple of the row's size, text ones have no line end at their end
    /// @throws Poco::IllegalStateException if a row has been begun value by value
    /// @throws Poco::InvalidAccessException if closed; Poco::FileException as write()
    void writeRowBytes(std::string_view rows);

    /// Text rows reach the system one by one, for recordings. Whoever writes a file from what is
    /// at hand already may let them wait until a block of them is full. Lasts until open().
    void setTextRowsWaiting(bool areWaiting) { areTextRowsWaiting_ = areWaiting; }

    /// Text encoding: appends a formatted value and a TAB, and in the last column a line end. Does
    /// not move on to the next column; write() does.
    /// @throws Poco::InvalidAccessException if closed
    /// @throws Poco::FileException if the file cannot take more
    void writeText(std::string_view text);

    /// Binary primitives: big-endian, without separators, outside the count of values.
    /// @throws as writeText()
    void writeByte(std::uint8_t value);
    void writeUInt16(std::uint16_t value);
    void writeUInt32(std::uint32_t value);
    void writeUInt64(std::uint64_t value);
    void writeFloat(float value);
    void writeDouble(double value);
    /// The length in 7-bit groups, low first, then the bytes.
    void writeString(const std::string& value);

    /// One value as a column's text, or with `binary` as the bytes of the column's type in the
    /// machine's order. Empty when there is no such column.
    /// @throws Poco::RangeException if the value does not fit
    [[nodiscard]] std::string formatValue(std::size_t columnIndex, const Poco::Dynamic::Var& value,
                                          bool binary) const;

    /// Hands all whole rows to the system.
    /// @throws Poco::FileException if the file cannot take more
    void flush();

    /// Writes what waits, begun rows included, closes the file and forgets the configuration.
    /// @throws Poco::FileException if the file could not take the rest; it is cut back to its last
    ///         whole row and closed all the same
    void close();

    /// Rows that were not written because a value was refused, since open().
    [[nodiscard]] std::uint64_t refusedRowCount() const { return refusedRowCount_; }

 private:
    template <typename T>
    static constexpr bool kIsExactInDouble = std::is_same_v<T, double> ||
                                             std::is_same_v<T, float> ||
                                             (std::is_integral_v<T> && sizeof(T) <= 4);

    /// Binary values wait until their row is whole: one conversion of a row is far cheaper than one
    /// of each value.
    void holdValue(double value) {
        heldRow_[column_] = value;
        if (++column_ == columnCount_) writeHeldRow();
    }
    void writeHeldRow();
    void releaseHeldRow();
    template <typename T>
    void writeNumber(T value);
    template <typename T>
    void writeTextNumber(T value);
    void writeBinaryRow(const double* row, const std::uint64_t* bits);
    void writeUnusualRow(std::span<const double> row, const std::uint64_t* bits);
    void writeTextRow(std::span<const double> row, const std::uint64_t* bits);
    template <typename T>
    void writePrimitive(const T& value);
    void prepareRows(const SensorFileConfig& config);
    void refuseRow();
    void closeQuietly() noexcept;
    void endTextRow();
    void endBinaryRow();
    void lookAtClock();

    OutputBlock block_;
    std::ostream stream_{&block_};
    Poco::BinaryWriter binaryWriter_{stream_, Poco::BinaryWriter::BIG_ENDIAN_BYTE_ORDER};
    BinaryRowCodec binaryRow_;
    TextRowCodec textRow_;
    std::vector<double> heldRow_;
    /// All values of the begun row are in heldRow_, none in the block; true between binary rows.
    bool isRowHeld_ = false;
    bool areTextRowsWaiting_ = false;
    const Clock* clock_ = nullptr;
    bool isRowWaiting_ = false;  ///< a whole binary row is in memory only, since waitingSince_
    std::chrono::nanoseconds waitingSince_{0};
    std::chrono::nanoseconds lastLook_{0};
    std::uint32_t rowsPerLook_ = 1;
    std::uint32_t rowsSinceLook_ = 0;
    std::uint32_t rowsInStep_ = 0;  ///< since the clock last moved
    std::uint64_t refusedRowCount_ = 0;
};

}  // namespace SensorFile
