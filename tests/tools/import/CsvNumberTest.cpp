#include "tools/import/CsvNumber.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {
namespace {

using Kind = CsvNumber::Kind;

Kind kindOf(const std::string& text, bool hasDecimalComma = false) {
    return scanNumber(text, {hasDecimalComma}).kind;
}

double valueOf(const std::string& text, bool hasDecimalComma = false) {
    double value = -77.0;
    EXPECT_TRUE(readDouble(text, {hasDecimalComma}, value)) << text;
    return value;
}

TEST(CsvNumberTest, IntegersHaveAMagnitudeAndASign) {
    for (const auto& [text, isNegative, magnitude] :
         {std::tuple<const char*, bool, std::uint64_t>{"0", false, 0},
          {"7", false, 7},
          {"+7", false, 7},
          {"-12", true, 12},
          {"000123", false, 123},
          {"1558680737898025123", false, 1558680737898025123U},
          {"-9223372036854775808", true, 9223372036854775808U},
          {"18446744073709551615", false, 18446744073709551615U},
          {"0000000000000000000000018446744073709551615", false, 18446744073709551615U}}) {
        const CsvNumber number = scanNumber(text, {});
        EXPECT_EQ(number.kind, Kind::kInteger) << text;
        EXPECT_EQ(number.isNegative, isNegative) << text;
        EXPECT_EQ(number.magnitude, magnitude) << text;
    }
}

TEST(CsvNumberTest, OtherNumbersAreReal) {
    for (const char* text :
         {"1.5", "-.5", "5.", "+1e3", "1E-05", "1.e+2", "-0", "18446744073709551616",
          "99999999999999999999999", "nan", "NaN", "-nan", "inf", "-Inf", "+INFINITY", "1e999"})
        EXPECT_EQ(kindOf(text), Kind::kReal) << text;
}

TEST(CsvNumberTest, WordsOfTruthAreOneAndZero) {
    for (const char* text : {"true", "True", "TRUE"}) {
        EXPECT_EQ(kindOf(text), Kind::kWord);
        EXPECT_EQ(scanNumber(text, {}).magnitude, 1U);
        EXPECT_EQ(valueOf(text), 1.0);
    }
    for (const char* text : {"false", "False", "FALSE"}) {
        EXPECT_EQ(kindOf(text), Kind::kWord);
        EXPECT_EQ(scanNumber(text, {}).magnitude, 0U);
        EXPECT_EQ(valueOf(text), 0.0);
    }
}

TEST(CsvNumberTest, EverythingElseIsText) {
    EXPECT_EQ(kindOf(""), Kind::kBlank);
    for (const char* text :
         {"-",    "+",     ".",   "-.",    "e5",  "1e",    "1e+", "1e5.",       "1.2.3",
          "1,5",  "+-1",   "--1", "0x10",  "1 2", " 1",    "1 ",  "12a",        "a",
          "nanx", "-true", "in",  "1_000", "#",   "\"1\"", "1\r", "2020-01-01", "10:00"}) {
        EXPECT_EQ(kindOf(text), Kind::kText) << text;
        double value = 0.0;
        EXPECT_FALSE(readDouble(text, {}, value)) << text;
    }
    EXPECT_EQ(kindOf(std::string("1\0", 2)), Kind::kText);
}

TEST(CsvNumberTest, DecimalCommaStandsInNumbersOfAnyLength) {
    const std::string zeros(3000, '0');
    EXPECT_EQ(kindOf("1," + zeros + "5", true), Kind::kReal);
    EXPECT_EQ(valueOf("1," + zeros + "5", true), 1.0);
    EXPECT_EQ(valueOf("0," + zeros + "5e3001", true), 5.0);
    EXPECT_EQ(valueOf("-" + zeros + "1,5", true), -1.5);
}

TEST(CsvNumberTest, DecimalCommaTakesThePointsPlace) {
    EXPECT_EQ(kindOf("1,5", true), Kind::kReal);
    EXPECT_EQ(valueOf("-1,5e2", true), -150.0);
    EXPECT_EQ(valueOf(",5", true), 0.5);
    EXPECT_EQ(kindOf("17", true), Kind::kInteger);
    EXPECT_TRUE(std::isnan(valueOf("nan", true)));
    for (const char* text : {"1.5", "1,5,2", "1,5.2", ","}) {
        double value = 0.0;
        EXPECT_EQ(kindOf(text, true), Kind::kText) << text;
        EXPECT_FALSE(readDouble(text, {true}, value)) << text;
    }
}

TEST(CsvNumberTest, DecimalsAreThoseThatFixedNotationNeeds) {
    for (const auto& [text, decimals] : {std::pair{"1.25", 2},
                                         {"1.", 0},
                                         {".125", 3},
                                         {"5.35E-05", 7},
                                         {"1.25e1", 1},
                                         {"1.25e9", 0},
                                         {"1e-3", 3},
                                         {"1e-99999999999", 400}})
        EXPECT_EQ(scanNumber(text, {}).decimals, decimals) << text;
}

TEST(CsvNumberTest, ValuesAreRoundedCorrectly) {
    EXPECT_EQ(valueOf("0.1"), 0.1);
    EXPECT_EQ(valueOf("9007199254740993"), 9007199254740992.0);
    EXPECT_EQ(valueOf("1e-400"), 0.0);
    EXPECT_EQ(valueOf("4.9e-324"), 4.9e-324);
    EXPECT_TRUE(std::signbit(valueOf("-0")));
    EXPECT_EQ(valueOf("-Infinity"), -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(valueOf("NaN")));
}

TEST(CsvNumberTest, FloatsAreRoundedOnce) {
    // Between two floats; as a double it would be in the very middle, and go to the even one.
    float value = 0.0F;
    ASSERT_TRUE(readFloat("1.00000017881393432617187499", {}, value));
    EXPECT_EQ(value, 1.00000011920928955078125F);
    EXPECT_FALSE(readFloat("1e39", {}, value));
}

TEST(CsvNumberTest, TooLargeNumbersAreNoDoubles) {
    double value = 0.0;
    for (const char* text : {"1e309", "-1e309", "2e308"})
        EXPECT_FALSE(readDouble(text, {}, value)) << text;
}

TEST(CsvNumberTest, NumbersOfAnyLengthAreRead) {
    EXPECT_EQ(valueOf("0." + std::string(5000, '0') + "1e5000"), 0.1);
    EXPECT_EQ(kindOf(std::string(5000, '7')), Kind::kReal);
    double value = 0.0;
    EXPECT_FALSE(readDouble(std::string(5000, '7'), {}, value));
}

RC_GTEST_PROP(CsvNumberTest, ValuesAreThoseOfAStream, (double number)) {
    for (const int precision : {3, 9, 17}) {
        std::ostringstream out;
        out.imbue(std::locale::classic());
        out.precision(precision);
        out << number;
        std::istringstream in(out.str());
        in.imbue(std::locale::classic());
        double expected = 0.0;
        in >> expected;
        RC_ASSERT(std::bit_cast<std::uint64_t>(valueOf(out.str())) ==
                  std::bit_cast<std::uint64_t>(expected));
        std::string withComma = out.str();
        std::replace(withComma.begin(), withComma.end(), '.', ',');
        RC_ASSERT(std::bit_cast<std::uint64_t>(valueOf(withComma, true)) ==
                  std::bit_cast<std::uint64_t>(expected));
    }
}

RC_GTEST_PROP(CsvNumberTest, WhatIsANumberIsReadAndNothingElse, ()) {
    const auto text =
        *rc::gen::container<std::string>(rc::gen::elementOf(std::string("0123456789..,eE+-nai")));
    for (const bool hasDecimalComma : {false, true}) {
        double value = 0.0;
        const Kind kind = kindOf(text, hasDecimalComma);
        const bool isRead = readDouble(text, {hasDecimalComma}, value);
        if (isRead) RC_ASSERT(kind != Kind::kText && kind != Kind::kBlank);
        if (kind == Kind::kInteger) RC_ASSERT(isRead);
    }
}

}  // namespace
}  // namespace SensorFileTool
