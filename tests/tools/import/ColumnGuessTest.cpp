#include "sensorfile/ColumnType.hpp"
#include "tools/import/ColumnGuess.hpp"
#include "tools/recording/TypeOption.hpp"

#include <initializer_list>

#include <gtest/gtest.h>

namespace SensorFileTool {
namespace {

ColumnGuess guessOf(std::initializer_list<const char*> cells, bool needsDecimals = false) {
    ColumnGuess guess(needsDecimals);
    std::uint64_t line = 1;
    for (const char* cell : cells)
        guess.add(cell, {}, line++);
    return guess;
}

std::string typeOf(std::initializer_list<const char*> cells) {
    return upperTypeName(guessOf(cells).getTypeCode());
}

TEST(ColumnGuessTest, WholeNumbersAreInt32IfTheyFit) {
    EXPECT_EQ(typeOf({"0", "1"}), "INT32");
    EXPECT_EQ(typeOf({"-2147483648", "2147483647"}), "INT32");
}

TEST(ColumnGuessTest, LargerOnesAreInt64ThenUInt64ThenDouble) {
    EXPECT_EQ(typeOf({"0", "2147483648"}), "INT64");
    EXPECT_EQ(typeOf({"-2147483649"}), "INT64");
    EXPECT_EQ(typeOf({"-9223372036854775808", "9223372036854775807"}), "INT64");
    EXPECT_EQ(typeOf({"0", "9223372036854775808"}), "UINT64");
    EXPECT_EQ(typeOf({"18446744073709551615"}), "UINT64");
    EXPECT_EQ(typeOf({"-1", "9223372036854775808"}), "DOUBLE");
    EXPECT_EQ(typeOf({"-9223372036854775809"}), "DOUBLE");
    EXPECT_EQ(typeOf({"18446744073709551616"}), "DOUBLE");
}

TEST(ColumnGuessTest, AnyOtherNumberOrABlankMakesItDouble) {
    for (const char* cell : {"1.0", "1e3", "nan", "inf", "-0", ""})
        EXPECT_EQ(typeOf({"1", cell, "2"}), "DOUBLE") << cell;
}

TEST(ColumnGuessTest, TrueAndFalseAloneAreBool) {
    EXPECT_EQ(typeOf({"true", "False"}), "BOOL");
    EXPECT_EQ(typeOf({"true", "7"}), "INT32");
    EXPECT_EQ(typeOf({"true", "0.5"}), "DOUBLE");
    EXPECT_EQ(typeOf({"true", ""}), "DOUBLE");
}

TEST(ColumnGuessTest, NothingIsDouble) {
    EXPECT_EQ(typeOf({}), "DOUBLE");
    EXPECT_FALSE(guessOf({}).hasAny());
    EXPECT_FALSE(guessOf({"", ""}).hasAny());
}

TEST(ColumnGuessTest, FirstTextIsKeptWithItsLine) {
    const ColumnGuess guess = guessOf({"1", "x", "y"});
    EXPECT_TRUE(guess.hasNumber());
    EXPECT_EQ(guess.getTextLine(), 2U);
    EXPECT_EQ(guess.getText(), "x");
    EXPECT_FALSE(guessOf({"", "x"}).hasNumber());
    EXPECT_TRUE(guessOf({"", "x"}).hasAny());
}

TEST(ColumnGuessTest, IsSettledOnceItIsDoubleForGood) {
    EXPECT_FALSE(guessOf({"1", ""}).isSettled());
    EXPECT_TRUE(guessOf({"1.5"}).isSettled());
    EXPECT_FALSE(guessOf({"1.5"}, true).isSettled());
}

TEST(ColumnGuessTest, MostDecimalsCount) {
    EXPECT_EQ(guessOf({"1.5", "0.125", "7"}, true).getDecimals(), 3);
}

TEST(ColumnGuessTest, WholeNumbersBeyondDoublesAreToldWhenRounded) {
    EXPECT_TRUE(guessOf({"9007199254740993", ""}).isRounded());
    EXPECT_TRUE(guessOf({"-9007199254740993", ""}).isRounded());
    EXPECT_FALSE(guessOf({"9007199254740992", ""}).isRounded());
    EXPECT_FALSE(guessOf({"9007199254740993"}).isRounded());
}

TEST(TypeOptionTest, NamesAreThoseOfUsersAndOfTextHeaders) {
    EXPECT_EQ(findColumnType("INT16"), SensorFile::kInt16);
    EXPECT_EQ(findColumnType("UCHAR"), SensorFile::kUChar);
    EXPECT_EQ(findColumnType("USHORT"), SensorFile::kUShort);
    EXPECT_EQ(findColumnType("ui8"), SensorFile::kUInt8);
    EXPECT_EQ(findColumnType("unsigned char"), SensorFile::kUChar);
    EXPECT_EQ(findColumnType("01"), SensorFile::kShort);
    for (const char* name : {"", "Int16", "INT", "string"})
        EXPECT_FALSE(findColumnType(name)) << name;
}

TEST(TypeOptionTest, EveryTypeHasANameInUpperCase) {
    for (int code = SensorFile::kUChar; code <= SensorFile::kInt64; ++code)
        EXPECT_EQ(findColumnType(upperTypeName(code)), code);
    EXPECT_EQ(listColumnTypes(),
              "BOOL, INT8, UINT8, INT16, UINT16, INT32, UINT32, INT64, UINT64, FLOAT, DOUBLE, "
              "CHAR, UCHAR, SHORT, USHORT");
}

}  // namespace
}  // namespace SensorFileTool
