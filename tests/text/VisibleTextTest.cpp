#include "text/VisibleText.hpp"

#include <string>

#include <gtest/gtest.h>

namespace Texts {
namespace {

using namespace std::string_literals;

TEST(VisibleTextTest, PlainTextStaysAsItIs) {
    const std::string text = "walk 1.bin 'x' \"y\" \\ %s {} $HOME ~";
    EXPECT_EQ(toVisible(text), text);
    EXPECT_EQ(toVisible(""), "");
}

TEST(VisibleTextTest, LettersOfAllLanguagesStayAsTheyAre) {
    const std::string text = "Größe µT \u20ac \u96fb\u6e90 \U0001f600 \u00a0";
    EXPECT_EQ(toVisible(text), text);
}

TEST(VisibleTextTest, ControlCharactersAreWrittenAsNumbers) {
    EXPECT_EQ(toVisible("a\x1b[31mred\nb\tc\rd\x7f"), "a\\x1b[31mred\\x0ab\\x09c\\x0dd\\x7f");
    EXPECT_EQ(toVisible("a\0b"s), "a\\x00b");
}

TEST(VisibleTextTest, ControlCharactersBehindAsciiAreWrittenByteByByte) {
    EXPECT_EQ(toVisible("\u0080\u009b1m\u009f"), "\\xc2\\x80\\xc2\\x9b1m\\xc2\\x9f");
    EXPECT_EQ(toVisible("\u2028\u2029"), "\\xe2\\x80\\xa8\\xe2\\x80\\xa9");
}

TEST(VisibleTextTest, TheDirectionOfWritingIsNotTurned) {
    EXPECT_EQ(toVisible("\u202egpj.exe"), "\\xe2\\x80\\xaegpj.exe");
    EXPECT_EQ(toVisible("\u2066\u2069\u200f\u061c"),
              "\\xe2\\x81\\xa6\\xe2\\x81\\xa9\\xe2\\x80\\x8f\\xd8\\x9c");
}

TEST(VisibleTextTest, BytesThatAreNoUtf8AreWrittenAsNumbers) {
    EXPECT_EQ(toVisible("\x9b"
                        "31m"),
              "\\x9b31m");
    EXPECT_EQ(toVisible("gr\xfc\xdf"), "gr\\xfc\\xdf");
    EXPECT_EQ(toVisible("\xc3"), "\\xc3");           // cut
    EXPECT_EQ(toVisible("\xe2\x82"), "\\xe2\\x82");  // cut
    EXPECT_EQ(toVisible("\xe2\x82z"), "\\xe2\\x82z");
    EXPECT_EQ(toVisible("\xc1\x9b"), "\\xc1\\x9b");                    // too long
    EXPECT_EQ(toVisible("\xe0\x82\x9b"), "\\xe0\\x82\\x9b");           // too long
    EXPECT_EQ(toVisible("\xed\xa0\x80"), "\\xed\\xa0\\x80");           // a surrogate
    EXPECT_EQ(toVisible("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");  // beyond the last
    EXPECT_EQ(toVisible("\xff\xfe"), "\\xff\\xfe");
}

TEST(VisibleTextTest, LinesStayLinesIfWanted) {
    EXPECT_EQ(toVisibleLines("a\x1b\n\tb\r\n"), "a\\x1b\n\tb\\x0d\n");
}

TEST(VisibleTextTest, JsonMeansTheSame) {
    EXPECT_EQ(toVisibleJson("{\n\t\"a\": \"\\u001b\u009b\x7f\u202e\u00e4\"\n}\n"),
              "{\n\t\"a\": \"\\u001b\\u009b\\u007f\\u202e\u00e4\"\n}\n");
}

}  // namespace
}  // namespace Texts
