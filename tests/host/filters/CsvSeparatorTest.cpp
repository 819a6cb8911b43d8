#include "host/filters/CsvSeparator.hpp"
#include "tests/host/filters/Support.hpp"

namespace Quoril::Core {
namespace {

TEST(CsvSeparatorTest, CharactersAndWordsAreRead) {
    EXPECT_EQ(CsvSeparator().getCharacter(), ',');
    EXPECT_EQ(CsvSeparator::parse(",").getCharacter(), ',');
    EXPECT_EQ(CsvSeparator::parse(";").getCharacter(), ';');
    EXPECT_EQ(CsvSeparator::parse("|").getCharacter(), '|');
    for (const char* text : {"\t", "\\t", "tab"})
        EXPECT_EQ(CsvSeparator::parse(text).getCharacter(), '\t') << text;
    for (const char* text : {" ", "blanks"})
        EXPECT_TRUE(CsvSeparator::parse(text).isBlanks()) << text;
}

TEST(CsvSeparatorTest, WhatOccursInNumbersAndNamesIsRefused) {
    for (const char* text : {"", "a", "1", "-", "+", ".", "\"", "#", "[", ",,", "\n", "\r"})
        EXPECT_THROW((void)CsvSeparator::parse(text), Poco::DataFormatException) << text;
    EXPECT_EQ(
        TestKit::messageOf<Poco::DataFormatException>([] { (void)CsvSeparator::parse("x"); }),
        "'x' cannot separate fields; use a character such as , or ; or |, or the words tab or "
        "blanks");
}

TEST(CsvSeparatorTest, TabIsPaddingUnlessItSeparates) {
    EXPECT_TRUE(CsvSeparator::parse(",").isPadding('\t'));
    EXPECT_FALSE(CsvSeparator::parse("tab").isPadding('\t'));
    EXPECT_TRUE(CsvSeparator::parse("tab").isPadding(' '));
}

}  // namespace
}  // namespace Quoril::Core
