#pragma once

#include "sensorfile/ByteOrder.hpp"
#include "sensorfile/ValueCast.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

#include <Poco/Exception.h>

namespace SensorFile {

class SensorFileConfig;

/// Rows of doubles to the bytes of a binary file and back. The columns are looked at once, when
/// the object is made: neighbours of one type become a block, and each block has a function made
/// for its type and length, without loops and decisions. In packing, a single byte behind 16-bit
/// columns belongs to their block, so that one function packs the whole row of many sensors.
/// Writing is always big-endian. May be used from any thread.
class BinaryRowCodec {
 public:
    /// No value is wider.
    static constexpr std::size_t kMaxValueSize = 8;

    /// Without columns: every value is refused.
    BinaryRowCodec() = default;
    /// Reads in the byte order of the configuration.
    explicit BinaryRowCodec(const SensorFileConfig& config);

    /// Bytes of a row.
    [[nodiscard]] std::size_t rowSize() const { return rowSize_; }

    /// @param row one value per column
    /// @param out room for rowSize() bytes
    void encode(const double* row, char* out) const noexcept {
        if (packRow_ != nullptr) {
            packRow_(row, out);
        } else {
            encodeBlocks(row, out);
        }
    }

    /// @param in rowSize() bytes
    /// @param row room for one value per column
    void decode(const char* in, double* row) const noexcept {
        for (const auto& block : unpacking_) {
            block.function(in, row);
            in += block.bytes;
            row += block.columns;
        }
    }

    /// What decode() rounds: the bits of the 64-bit integers of a row.
    /// @param bits room for one number per column; the others' are left alone
    void decodeWide(const char* in, std::uint64_t* bits) const noexcept {
        for (const Wide& wide : wide_) {
            bits[wide.column] = isBigEndian_
                                    ? loadAs<std::uint64_t, std::endian::big>(in + wide.offset)
                                    : loadAs<std::uint64_t, std::endian::little>(in + wide.offset);
        }
    }
    /// Puts the bits of the 64-bit integers into the bytes that encode() made.
    void encodeWide(const std::uint64_t* bits, char* out) const noexcept {
        for (const Wide& wide : wide_)
            storeBigEndian(out + wide.offset, bits[wide.column]);
    }

    /// Writes one value in its column's type.
    /// @param out room for kMaxValueSize bytes
    /// @return the end of what was written
    /// @throws Poco::InvalidAccessException if there are no columns
    template <typename T>
    char* encodeValue(std::size_t column, T value, char* out) const;

 private:
    enum class Kind : std::uint8_t {
        none,
        u8,
        i8,
        u16,
        i16,
        u32,
        i32,
        u64,
        i64,
        f32,
        f64,
        boolean
    };
    using Pack = void (*)(const double* row, char* out) noexcept;
    using Unpack = void (*)(const char* in, double* row) noexcept;
    template <typename Function>
    struct Block {
        Function function;
        std::size_t columns;
        std::size_t bytes;
    };

    /// A column of 64-bit integers, and where it is in a row's bytes.
    struct Wide {
        std::size_t column;
        std::size_t offset;
    };

    static Kind kindOf(int typeCode);
    static Kind packedKind(Kind kind);
    static Pack packFor(Kind kind, std::size_t columns);
    template <std::endian Order>
    static Unpack unpackFor(Kind kind, std::size_t columns);
    static std::size_t sizeOf(Kind kind);
    void encodeBlocks(const double* row, char* out) const noexcept;
    void planBlocks(const std::vector<Kind>& kinds);

    std::vector<Kind> kinds_{Kind::none};  ///< per column, as packed
    std::vector<Block<Pack>> packing_;
    Pack packRow_ = nullptr;  ///< the only block's function, if there is only one
    std::vector<Block<Unpack>> unpacking_;
    std::vector<Wide> wide_;
    bool isBigEndian_ = true;
    std::size_t rowSize_ = 0;
};

template <typename T>
char* BinaryRowCodec::encodeValue(std::size_t column, T value, char* out) const {
    switch (kinds_[column]) {
        case Kind::u8:
            return storeBigEndian(out, static_cast<std::uint8_t>(lowBits(value)));
        case Kind::u16:
            return storeBigEndian(out, static_cast<std::uint16_t>(lowBits(value)));
        case Kind::u32:
            return storeBigEndian(out, static_cast<std::uint32_t>(lowBits(value)));
        case Kind::u64:
            return storeBigEndian(out, lowBits(value));
        case Kind::f32:
            return storeBigEndian(out, static_cast<float>(value));
        case Kind::f64:
            return storeBigEndian(out, static_cast<double>(value));
        case Kind::boolean:
            return storeBigEndian(out, static_cast<std::uint8_t>(value != T{0} ? 1 : 0));
        default:
            throw Poco::InvalidAccessException("The file has no columns.");
    }
}

}  // namespace SensorFile
