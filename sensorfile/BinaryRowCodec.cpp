#include "sensorfile/BinaryRowCodec.hpp"

#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SensorFileConfig.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <type_traits>
#include <utility>

namespace SensorFile {
namespace {

/// Longer runs of one type become several blocks.
constexpr std::size_t kMaxBlock = 16;

/// True when the magnitudes together stay below 2^31, which NaN and infinity do not: 32-bit
/// conversions, the cheap ones, will do then. Two sums side by side cost less than a comparison for
/// each value.
template <std::size_t Count>
bool fitInt32(const double* values) noexcept {
    double even = std::abs(values[0]);
    double odd = Count > 1 ? std::abs(values[1]) : 0.0;
    for (std::size_t i = 2; i + 1 < Count; i += 2) {
        even += std::abs(values[i]);
        odd += std::abs(values[i + 1]);
    }
    if constexpr (Count > 2 && Count % 2 != 0) even += std::abs(values[Count - 1]);
    return even + odd < 0x1p31;
}

/// Values of any size. On its own, so that the usual case stays short.
template <typename T>
[[gnu::cold]] void packLarge(const double* row, std::size_t count, char* out) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        storeBigEndian(out + i * sizeof(T), static_cast<T>(lowBits(row[i])));
    }
}

/// Values that fitInt32: conversions to 32 bits are the cheap ones, several at once.
template <typename T, std::size_t Count>
void packSmall(const double* row, char* out) noexcept {
    for (std::size_t i = 0; i < Count; ++i) {
        const auto bits = static_cast<T>(static_cast<std::int32_t>(row[i]));
        storeBigEndian(out + i * sizeof(T), bits);
    }
}

template <typename T, std::size_t Count>
void packBlock(const double* row, char* out) noexcept {
    if constexpr (std::is_integral_v<T> && sizeof(T) <= 4) {
        if (fitInt32<Count>(row)) {
            packSmall<T, Count>(row, out);
        } else {
            packLarge<T>(row, Count, out);
        }
    } else {
        for (std::size_t i = 0; i < Count; ++i) {
            if constexpr (std::is_integral_v<T>) {
                storeBigEndian(out + i * sizeof(T), static_cast<T>(lowBits(row[i])));
            } else {
                storeBigEndian(out + i * sizeof(T), static_cast<T>(row[i]));
            }
        }
    }
}

/// 16-bit columns and a byte behind them, as many sensors give: a counter, axes and flags.
template <std::size_t Count>
void packShortsAndByte(const double* row, char* out) noexcept {
    constexpr std::size_t kByte = Count * sizeof(std::uint16_t);
    if (fitInt32<Count + 1>(row)) {
        packSmall<std::uint16_t, Count>(row, out);
        packSmall<std::uint8_t, 1>(row + Count, out + kByte);
    } else {
        packLarge<std::uint16_t>(row, Count, out);
        packLarge<std::uint8_t>(row + Count, 1, out + kByte);
    }
}

template <std::size_t Count>
void packBools(const double* row, char* out) noexcept {
    for (std::size_t i = 0; i < Count; ++i)
        out[i] = row[i] != 0.0 ? '\1' : '\0';
}

template <typename T, std::endian Order, std::size_t Count>
void unpackBlock(const char* in, double* row) noexcept {
    for (std::size_t i = 0; i < Count; ++i) {
        row[i] = static_cast<double>(loadAs<T, Order>(in + i * sizeof(T)));
    }
}

/// Any odd byte is true.
template <std::size_t Count>
void unpackBools(const char* in, double* row) noexcept {
    for (std::size_t i = 0; i < Count; ++i)
        row[i] = (in[i] & 1) != 0 ? 1.0 : 0.0;
}

// The functions for blocks of 1 to kMaxBlock columns, in this order.
using Counts = std::make_index_sequence<kMaxBlock>;

template <typename T, std::size_t... I>
auto packOf(std::size_t columns, std::index_sequence<I...>) {
    static constexpr std::array kFunctions = {&packBlock<T, I + 1>...};
    return kFunctions[columns - 1];
}

template <std::size_t... I>
auto packShortsAndByteOf(std::size_t columns, std::index_sequence<I...>) {
    static constexpr std::array kFunctions = {&packShortsAndByte<I + 1>...};
    return kFunctions[columns - 1];
}

template <std::size_t... I>
auto packBoolsOf(std::size_t columns, std::index_sequence<I...>) {
    static constexpr std::array kFunctions = {&packBools<I + 1>...};
    return kFunctions[columns - 1];
}

template <typename T, std::endian Order, std::size_t... I>
auto unpackOf(std::size_t columns, std::index_sequence<I...>) {
    static constexpr std::array kFunctions = {&unpackBlock<T, Order, I + 1>...};
    return kFunctions[columns - 1];
}

template <std::size_t... I>
auto unpackBoolsOf(std::size_t columns, std::index_sequence<I...>) {
    static constexpr std::array kFunctions = {&unpackBools<I + 1>...};
    return kFunctions[columns - 1];
}

/// Calls add(kind, columns) for each block: a run of equal kinds, or a part of a long one.
template <typename Kinds, typename Add>
void forEachBlock(const Kinds& kinds, Add add) {
    for (auto first = kinds.begin(); first != kinds.end();) {
        const auto limit = std::min<std::ptrdiff_t>(kinds.end() - first, kMaxBlock);
        const auto last =
            std::find_if(first, first + limit, [&](auto kind) { return kind != *first; });
        add(*first, static_cast<std::size_t>(last - first));
        first = last;
    }
}

}  // namespace

BinaryRowCodec::BinaryRowCodec(const SensorFileConfig& config)
    : isBigEndian_(config.isBigEndian()) {
    std::vector<Kind> kinds;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i) {
        const auto& column = config.getColumn(i);
        kinds.push_back(kindOf(column.getTypeCode()));
        if (kinds.back() == Kind::u64 || kinds.back() == Kind::i64) wide_.push_back({i, rowSize_});
        rowSize_ += column.getSize();
    }
    planBlocks(kinds);
}

void BinaryRowCodec::planBlocks(const std::vector<Kind>& kinds) {
    forEachBlock(kinds, [&](Kind kind, std::size_t columns) {
        const auto unpack = isBigEndian_ ? unpackFor<std::endian::big>(kind, columns)
                                         : unpackFor<std::endian::little>(kind, columns);
        unpacking_.push_back({unpack, columns, columns * sizeOf(kind)});
    });
    if (kinds.empty()) return;
    kinds_.resize(kinds.size());
    std::transform(kinds.begin(), kinds.end(), kinds_.begin(), packedKind);
    Kind before = Kind::none;
    forEachBlock(kinds_, [&](Kind kind, std::size_t columns) {
        if (before == Kind::u16 && kind == Kind::u8 && columns == 1) {
            auto& shorts = packing_.back();
            shorts.function = packShortsAndByteOf(shorts.columns, Counts{});
            ++shorts.columns;
            ++shorts.bytes;
        } else {
            packing_.push_back({packFor(kind, columns), columns, columns * sizeOf(kind)});
        }
        before = kind;
    });
    packRow_ = packing_.size() == 1 ? packing_.front().function : nullptr;
}

void BinaryRowCodec::encodeBlocks(const double* row, char* out) const noexcept {
    for (const auto& block : packing_) {
        block.function(row, out);
        row += block.columns;
        out += block.bytes;
    }
}

BinaryRowCodec::Kind BinaryRowCodec::kindOf(int typeCode) {
    switch (typeCode) {
        case kUChar:
        case kUInt8:
            return Kind::u8;
        case kChar:
        case kInt8:
            return Kind::i8;
        case kUShort:
        case kUInt16:
            return Kind::u16;
        case kShort:
        case kInt16:
            return Kind::i16;
        case kUInt32:
            return Kind::u32;
        case kInt32:
            return Kind::i32;
        case kUInt64:
            return Kind::u64;
        case kInt64:
            return Kind::i64;
        case kFloat:
            return Kind::f32;
        case kDouble:
            return Kind::f64;
        default:
            return Kind::boolean;
    }
}

/// Low bits are the same for signed and unsigned columns.
BinaryRowCodec::Kind BinaryRowCodec::packedKind(Kind kind) {
    switch (kind) {
        case Kind::i8:
            return Kind::u8;
        case Kind::i16:
            return Kind::u16;
        case Kind::i32:
            return Kind::u32;
        case Kind::i64:
            return Kind::u64;
        default:
            return kind;
    }
}

std::size_t BinaryRowCodec::sizeOf(Kind kind) {
    switch (kind) {
        case Kind::u16:
        case Kind::i16:
            return 2;
        case Kind::u32:
        case Kind::i32:
        case Kind::f32:
            return 4;
        case Kind::u64:
        case Kind::i64:
        case Kind::f64:
            return 8;
        default:
            return 1;
    }
}

BinaryRowCodec::Pack BinaryRowCodec::packFor(Kind kind, std::size_t columns) {
    switch (kind) {
        case Kind::u8:
            return packOf<std::uint8_t>(columns, Counts{});
        case Kind::u16:
            return packOf<std::uint16_t>(columns, Counts{});
        case Kind::u32:
            return packOf<std::uint32_t>(columns, Counts{});
        case Kind::u64:
            return packOf<std::uint64_t>(columns, Counts{});
        case Kind::f32:
            return packOf<float>(columns, Counts{});
        case Kind::f64:
            return packOf<double>(columns, Counts{});
        default:
            return packBoolsOf(columns, Counts{});
    }
}

template <std::endian Order>
BinaryRowCodec::Unpack BinaryRowCodec::unpackFor(Kind kind, std::size_t columns) {
    switch (kind) {
        case Kind::u8:
            return unpackOf<std::uint8_t, Order>(columns, Counts{});
        case Kind::i8:
            return unpackOf<std::int8_t, Order>(columns, Counts{});
        case Kind::u16:
            return unpackOf<std::uint16_t, Order>(columns, Counts{});
        case Kind::i16:
            return unpackOf<std::int16_t, Order>(columns, Counts{});
        case Kind::u32:
            return unpackOf<std::uint32_t, Order>(columns, Counts{});
        case Kind::i32:
            return unpackOf<std::int32_t, Order>(columns, Counts{});
        case Kind::u64:
            return unpackOf<std::uint64_t, Order>(columns, Counts{});
        case Kind::i64:
            return unpackOf<std::int64_t, Order>(columns, Counts{});
        case Kind::f32:
            return unpackOf<float, Order>(columns, Counts{});
        case Kind::f64:
            return unpackOf<double, Order>(columns, Counts{});
        default:
            return unpackBoolsOf(columns, Counts{});
    }
}

}  // namespace SensorFile
