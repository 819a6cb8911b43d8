#include "host/filters/NumberText.hpp"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

TEST(NumberTextTest, WholeNumbersOfAllSpellingsAreRead) {
    struct Case {
        const char* text;
        double value;
    };
    const Case cases[] = {
        {"0", 0.0},
        {"-0.5", -0.5},
        {"+1.5", 1.5},
        {".25", 0.25},
        {"3.", 3.0},
        {"5.35E-05", 5.35e-05},
        {"1e3", 1000.0},
        {"1e-400", 0.0},
        {"4.9e-324", 4.9e-324},
        {"9007199254740992", 9007199254740992.0},
        {"9007199254740993", 9007199254740992.0},
        {"1737839630219472748", 1737839630219472748.0},
        {"inf", INFINITY},
        {"-INF", -INFINITY},
        {"Infinity", INFINITY},
    };
    for (const Case& c : cases) {
        double value = 77.0;
        EXPECT_TRUE(parseNumber(c.text, value)) << c.text;
        EXPECT_EQ(value, c.value) << c.text;
    }
}

TEST(NumberTextTest, NanIsReadInAnyCase) {
    for (const char* text : {"nan", "NaN", "NAN", "-nan"}) {
        double value = 0.0;
        EXPECT_TRUE(parseNumber(text, value)) << text;
        EXPECT_TRUE(std::isnan(value)) << text;
    }
}

TEST(NumberTextTest, WhatIsNotOneNumberIsRefusedAndLeavesTheValue) {
    for (const char* text : {"", " ", "1 ", " 1", "1.2.3", "12abc", "0x10", "1,5", "--1", "+-1",
                             "+", "e5", "1e", "one", "1e400", "-1e400", "[1]", "\"1\""}) {
        double value = 77.0;
        EXPECT_FALSE(parseNumber(text, value)) << text;
        EXPECT_EQ(value, 77.0) << text;
    }
}

TEST(NumberTextTest, ByteZeroInTheTextIsRefused) {
    double value = 77.0;
    EXPECT_FALSE(parseNumber(std::string_view("1\0", 2), value));
    EXPECT_FALSE(parseNumber(std::string_view("\0", 1), value));
}

TEST(NumberTextTest, RandomNumbersAreReadAsTheCLibraryReadsThem) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        const double number =
            std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 200) - 100);
        const int digits = static_cast<int>(random() % 20);
        char text[512];
        std::snprintf(text, sizeof text, i % 2 == 0 ? "%.*g" : "%.*f", digits, number);
        double value = 0.0;
        ASSERT_TRUE(parseNumber(text, value)) << text;
        EXPECT_EQ(value, std::strtod(text, nullptr)) << text;
    }
}

TEST(NumberTextTest, TrimmingTakesSpacesAndTabsAtBothEndsOnly) {
    EXPECT_EQ(trimBlanks(" \t a b\t "), "a b");
    EXPECT_EQ(trimBlanks(" \t "), "");
    EXPECT_EQ(trimBlanks(""), "");
}

}  // namespace
}  // namespace Quoril::Core
