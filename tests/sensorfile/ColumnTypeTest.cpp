#include "sensorfile/ColumnType.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <Poco/Exception.h>

namespace SensorFile {
namespace {

constexpr const char* kNotAType = "Column type is not compatible with SensorFile format";

struct TypeCase {
    int code;
    const char* name;
    std::size_t size;
    int storedCode;
};

const TypeCase kTypes[] = {
    {2, "unsigned char", 1, 2}, {3, "signed char", 1, 3}, {4, "unsigned short", 2, 4},
    {5, "short", 2, 5},         {6, "uint32", 4, 6},      {7, "int32", 4, 7},
    {8, "float", 4, 8},         {9, "double", 8, 9},      {10, "bool", 1, 10},
    {11, "uint8", 1, 11},       {12, "int8", 1, 12},      {13, "uint16", 2, 13},
    {14, "int16", 2, 14},       {15, "uint64", 8, 15},    {16, "int64", 8, 16},
    {17, "uint32", 4, 6},       {18, "int32", 4, 7},
};

TEST(ColumnTypeTest, EveryCodeHasItsNameAndWidth) {
    for (const TypeCase& type : kTypes) {
        EXPECT_EQ(columnTypeName(type.code), type.name) << type.code;
        EXPECT_EQ(columnTypeSize(type.code), type.size) << type.code;
        EXPECT_EQ(canonicalColumnType(type.code), type.storedCode) << type.code;
    }
}

TEST(ColumnTypeTest, CodesOutsideTheTableAreRefused) {
    for (const int code : {-1, 0, 1, 19, 20, 255, 256, -2147483647}) {
        EXPECT_THROW_MESSAGE(columnTypeName(code), Poco::DataException, kNotAType);
        EXPECT_THROW_MESSAGE(columnTypeSize(code), Poco::DataException, kNotAType);
        EXPECT_THROW_MESSAGE(canonicalColumnType(code), Poco::DataException, kNotAType);
    }
}

TEST(ColumnTypeTest, EveryAliasGivesItsCode) {
    const std::pair<const char*, int> aliases[] = {
        {"signed char", 3},
        {"char", 3},
        {"c", 3},
        {"unsigned char", 2},
        {"uc", 2},
        {"short", 5},
        {"signed short", 5},
        {"s", 5},
        {"01", 5},
        {"unsigned short", 4},
        {"us", 4},
        {"00", 4},
        {"int8", 12},
        {"i8", 12},
        {"uint8", 11},
        {"unsigned int8", 11},
        {"ui8", 11},
        {"int16", 14},
        {"i16", 14},
        {"uint16", 13},
        {"unsigned int16", 13},
        {"ui16", 13},
        {"int32", 7},
        {"i32", 7},
        {"i", 7},
        {"uint32", 6},
        {"unsigned int32", 6},
        {"ui32", 6},
        {"ui", 6},
        {"int64", 16},
        {"i64", 16},
        {"uint64", 15},
        {"unsigned int64", 15},
        {"ui64", 15},
        {"float", 8},
        {"f", 8},
        {"double", 9},
        {"d", 9},
        {"bool", 10},
        {"b", 10},
    };
    for (const auto& [name, code] : aliases)
        EXPECT_EQ(columnTypeFromName(name), code) << name;
}

TEST(ColumnTypeTest, EveryCanonicalNameIsItsOwnAlias) {
    for (const int code : kAllTypeCodes)
        EXPECT_EQ(columnTypeFromName(columnTypeName(code)), code);
}

TEST(ColumnTypeTest, NamesAreExact) {
    for (const char* name :
         {"UINT8", "Double", "int", "", " int8", "int8 ", "unsigned", "0", "1"}) {
        EXPECT_THROW_MESSAGE(columnTypeFromName(name), Poco::DataException, kNotAType);
    }
}

TEST(ColumnTypeTest, BinaryKindZeroAndOneTakeTheTypeFromTheSize) {
    EXPECT_EQ(columnTypeFromBinary(1, 0), 11);
    EXPECT_EQ(columnTypeFromBinary(1, 1), 12);
    EXPECT_EQ(columnTypeFromBinary(2, 0), 13);
    EXPECT_EQ(columnTypeFromBinary(2, 1), 14);
    EXPECT_EQ(columnTypeFromBinary(4, 0), 6);
    EXPECT_EQ(columnTypeFromBinary(4, 1), 7);
    EXPECT_EQ(columnTypeFromBinary(8, 0), 15);
    EXPECT_EQ(columnTypeFromBinary(8, 1), 16);
}

TEST(ColumnTypeTest, BinarySizesThatNoIntegerHasGiveNoType) {
    for (const unsigned size : {0U, 3U, 5U, 6U, 7U, 9U, 255U}) {
        EXPECT_FALSE(columnTypeFromBinary(size, 0)) << size;
        EXPECT_FALSE(columnTypeFromBinary(size, 1)) << size;
    }
}

TEST(ColumnTypeTest, BinaryKindFromTwoOnIsTheCodeWhateverTheSize) {
    for (unsigned kind = 2; kind <= 18; ++kind) {
        EXPECT_EQ(columnTypeFromBinary(3, kind), static_cast<int>(kind));
    }
    EXPECT_THROW_MESSAGE(columnTypeFromBinary(4, 19), Poco::DataException, kNotAType);
    EXPECT_THROW_MESSAGE(columnTypeFromBinary(4, 255), Poco::DataException, kNotAType);
}

}  // namespace
}  // namespace SensorFile
