#pragma once

#include "sensorfile/BinaryRowCodec.hpp"
#include "sensorfile/InputBlock.hpp"
#include "sensorfile/SensorFileIo.hpp"
#include "sensorfile/TextRowCodec.hpp"
#include "sensorfile/TypeName.hpp"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <Poco/Dynamic/Var.h>

namespace SensorFile {

/// Reads a sensor file: open(), values or rows until isEof(), close().
///
/// Reading past the end does not throw: the values carry no meaning and isEof() turns true. So it
/// does after text that is no number, so that every loop ends. A device that cannot be read is told
/// by Poco::FileException from any read.
/// Not thread-safe: one thread at a time uses a reader.
class SensorFileReader : public SensorFileIo {
 public:
    SensorFileReader();

    /// Opens a file and reads its sections. Does nothing if already open.
    /// @throws Poco::FileException (or one derived) naming the path
    /// @throws Poco::DataException "Format error in file : '" + path + "'", with ", check binary
    ///         mode!" behind it when not even the first section was recognised; a nested exception
    ///         tells the cause where there is one. Or the message of an unknown type
    /// After any exception the reader is closed, as if never opened.
    void open(const std::string& path, bool binary);

    /// Reads values in column order, each converted from its column's type to T; floating point
    /// numbers are truncated toward zero for integers.
    /// @param values room for `count` values
    /// @return false if closed; true otherwise, also when the values ran short: test isEof()
    /// @throws Poco::RangeException if a value does not fit T (never for double); the position is
    ///         behind that value
    template <typename T>
    requires std::is_arithmetic_v<T>
    bool read(T* values, std::size_t count);

    /// Reads the next row, the same values as read<double>() gives.
    /// @param row one value per column
    /// @return false if closed, without columns, or when the rows have ended: isEof() is then true
    ///         and the values carry no meaning. A row that runs into the end of the file without
    ///         its last separator may be torn and is not delivered (a character is always whole)
    /// @throws Poco::InvalidArgumentException if the size differs from the column count
    /// @throws Poco::IllegalStateException if a row has been begun value by value
    bool readRow(std::span<double> row);

    /// The same, and beside the values, which hold large ones only rounded, the exact bits of
    /// 64-bit integers.
    /// @param bits one number per column; set are those of columns of type "uint64" and "int64"
    bool readRow(std::span<double> row, std::span<std::uint64_t> bits);

    /// Reads the next value in its column's own type; "uint8" and "int8" columns give 32-bit
    /// numbers in text.
    /// @return false if closed or without columns
    bool readValue(Poco::Dynamic::Var& value);

    /// Single reads, whatever the column's type; each counts as one value. Text is extracted as
    /// streams do it (a character for readByte() and readSByte()), binary has the byte order of
    /// the file. 0 at the end.
    unsigned char readByte();
    signed char readSByte();
    std::uint16_t readUInt16();
    std::int16_t readInt16();
    std::uint32_t readUInt32();
    std::int32_t readInt32();
    std::uint64_t readUInt64();
    std::int64_t readInt64();
    float readFloat();
    double readDouble();
    /// Binary: true for any odd byte.
    bool readBool();

    /// True after a read ran past the end or met text that is no number, and while closed.
    [[nodiscard]] bool isEof() const { return !isOpen() || stream_.eof(); }

    /// Back to the first sample. The position in the row is left as it is: rewind between rows.
    void rewind();

    /// Goes to the start of a row of a binary file, counted from 0. A row that is not there may be
    /// gone to; reading then finds the end.
    /// @throws Poco::IllegalStateException for a text file: its rows have no fixed size
    /// @throws Poco::RangeException, Poco::FileException naming the path, if no file of the system
    ///         can be that long
    void seekRow(std::uint64_t row);

    /// Offset in bytes of the next unread byte, from the start of the file.
    [[nodiscard]] std::int64_t position() const { return block_.position(); }

    void close();

 private:
    template <typename T>
    T readTyped();
    template <typename T>
    T takeBinary();
    template <typename T>
    T extractText();
    double extractNonFinite(bool isNegative);
    double extractTextColumn(std::size_t column, std::uint64_t* bits);
    template <typename T>
    double extractWide(std::uint64_t* bits);
    [[nodiscard]] bool isNextOfType(std::string_view typeName) const;
    void readSections(const std::string& path);
    void readRecordingSections();
    void readCalibOnlySection();
    bool takeRow(double* row, std::uint64_t* bits, std::size_t size);
    bool readWholeRow(std::span<double> row, std::uint64_t* bits);
    bool readSplitRow(double* row, std::uint64_t* bits);
    bool readTextRow(double* row, std::uint64_t* bits);
    bool readRowValues(double* row, std::uint64_t* bits);

    InputBlock block_;
    std::istream stream_{&block_};
    BinaryRowCodec binaryRow_;
    TextRowCodec textRow_;
    std::vector<char> splitRow_;  ///< a binary row that lies across two blocks
    std::int64_t sampleStart_ = 0;
};

}  // namespace SensorFile

#include "sensorfile/SensorFileReader.inl"
