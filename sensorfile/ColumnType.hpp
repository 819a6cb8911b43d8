#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace SensorFile {

/// The scalar type of a column. The values are stored in files: never change one.
/// UChar/UInt8, Char/Int8, UShort/UInt16 and Short/Int16 are stored alike and differ in the name
/// that a header carries, and UChar and Char are single characters in text.
enum ColumnType : std::int32_t {
    kUChar = 2,
    kChar = 3,
    kUShort = 4,
    kShort = 5,
    kUInt32 = 6,
    kInt32 = 7,
    kFloat = 8,
    kDouble = 9,
    kBool = 10,
    kUInt8 = 11,
    kInt8 = 12,
    kUInt16 = 13,
    kInt16 = 14,
    kUInt64 = 15,
    kInt64 = 16,
    kUInt32Alias = 17,  ///< accepted on input, becomes kUInt32
    kInt32Alias = 18,   ///< accepted on input, becomes kInt32
};

/// The name that a text header carries for a type code, e.g. "unsigned char" for 2.
/// @throws Poco::DataException if the code is outside 2 to 18
const std::string& columnTypeName(int code);

/// The code of a type name found in a text header; exact, with the short aliases ("ui8", "d").
/// @throws Poco::DataException if no name matches
int columnTypeFromName(std::string_view name);

/// The code of a column record in a binary header.
/// @param size width in bytes, which decides when kind is 0 (unsigned) or 1 (signed)
/// @param kind 0, 1, or the code itself; 17 and 18 are passed on as they are
/// @return nothing when the size is not 1, 2, 4 or 8 and kind is 0 or 1
/// @throws Poco::DataException if kind is a code outside 2 to 18
std::optional<int> columnTypeFromBinary(unsigned size, unsigned kind);

/// The code under which a column is stored: 6 for 17, 7 for 18, the code itself otherwise.
/// @throws Poco::DataException if the code is outside 2 to 18
int canonicalColumnType(int code);

/// Width in bytes of one value in the binary encoding.
/// @throws Poco::DataException if the code is outside 2 to 18
std::size_t columnTypeSize(int code);

}  // namespace SensorFile
