#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// The numbers of the file format, for writer and reader alike. Layout: docs/file-format.md.
namespace SensorFile {

/// Every section opens with these three words.
inline constexpr std::array<std::uint32_t, 3> kSectionMagic = {0xaf243246, 0x56fe1289, 0x9078bc29};
/// The first of them as a file of the other byte order shows it.
inline constexpr std::uint32_t kSwappedMagic = 0x463224af;

inline constexpr std::uint16_t kHeaderId = 0x8034;
inline constexpr std::uint16_t kDataId = 0x8035;
inline constexpr std::uint16_t kCalibId = 0x8036;

inline constexpr std::uint16_t kDefaultHeaderVersion = 0x0101;
inline constexpr std::uint16_t kDefaultCalibVersion = 0x0200;
inline constexpr std::uint16_t kDefaultDataVersion = 0x0100;
/// Header sections of this version hold the frequency as a 16-bit integer.
inline constexpr std::uint16_t kIntegerFrequencyVersion = 0x0100;
/// Calibration sections of this version hold the format number in one byte.
inline constexpr std::uint16_t kShortFormatVersion = 0x0100;
/// From this version on the calibration section holds named records.
inline constexpr std::uint16_t kNamedRecordsVersion = 0x0200;
/// The exception: a later number, but bare little-endian values and dates in coded decimals.
inline constexpr std::uint16_t kCodedCalibVersion = 0x8101;

inline constexpr std::uint16_t kDefaultCalibFormat = 2;
inline constexpr double kDefaultSampleFrequency = 200.0;  // Hz
inline constexpr int kDefaultDoublePrecision = 5;

inline constexpr std::uint64_t kHeaderBaseSize = 40;
inline constexpr std::uint64_t kColumnRecordSize = 34;
inline constexpr std::uint64_t kCalibBaseSize = 32;
/// Characters of a name in a binary record; a shorter name ends with a NUL.
inline constexpr std::size_t kNameSize = 32;
/// Binary dates count years from here, in one byte.
inline constexpr int kFirstYear = 2000;

/// True for calibration sections that hold bare values in groups of twelve.
constexpr bool isBareCalibVersion(std::uint16_t version) {
    return version == kCodedCalibVersion || version < kNamedRecordsVersion;
}

}  // namespace SensorFile
