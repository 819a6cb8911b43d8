#include "framework/ValueProperty.hpp"
#include "tests/framework/TestSupport.hpp"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

template <class T>
std::string textOf(const T& value) {
    const ValueProperty<T> property("Text", nullptr, value);
    std::string text = "overwritten";
    property.serialize(text);
    return text;
}

template <class T>
struct Reading {
    const char* text;
    T value;
};

template <class T>
void expectReads(const std::vector<Reading<T>>& cases) {
    for (const auto& [text, value] : cases) {
        ValueProperty<T> property("Text", nullptr);
        EXPECT_NO_THROW(property.deSerialize(text)) << text;
        EXPECT_EQ(property.get(), value) << text;
    }
}

template <class T>
void expectRefuses(const T& before, const std::vector<const char*>& texts) {
    struct Callback {
        void call(const T& /*value*/) { ++calls; }
        int calls = 0;
    } callback;
    for (const char* text : texts) {
        ValueProperty<T> property("Text", nullptr, before);
        property.attach(callback, &Callback::call);
        EXPECT_THROW(property.deSerialize(text), Poco::DataFormatException) << text;
        EXPECT_EQ(property.get(), before) << text;
    }
    EXPECT_EQ(callback.calls, 0) << "a text that cannot be read never reaches the setter";
}

void expectWrites() {
    EXPECT_EQ(textOf(true), "1");
    EXPECT_EQ(textOf(false), "0");
    EXPECT_EQ(textOf(1234567), "1234567");
    EXPECT_EQ(textOf(std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(textOf(4294967295U), "4294967295");
    EXPECT_EQ(textOf<short>(-32768), "-32768");
    EXPECT_EQ(textOf(0.1), "0.1");
    EXPECT_EQ(textOf(3.14159265), "3.14159");
    EXPECT_EQ(textOf(1234567.0), "1.23457e+06");
    EXPECT_EQ(textOf(100000.0), "100000");
    EXPECT_EQ(textOf(1e-5), "1e-05");
    EXPECT_EQ(textOf(-0.0), "-0");
    EXPECT_EQ(textOf(std::string("two words; three")), "two words; three");
    EXPECT_EQ(textOf(std::string()), "");
}

TEST(ValuePropertyText, IsDefaultStreamOutput) {
    expectWrites();
}

TEST(ValuePropertyText, IsTheSameUnderACommaDecimalLocale) {
    const FrameworkTest::CommaLocale locale;
    expectWrites();
}

TEST(ValuePropertyText, IntegerIsReadUpToTheFirstForeignCharacter) {
    expectReads<int>({{"12", 12},
                      {"12abc", 12},
                      {"12 13", 12},
                      {" \t\n-7", -7},
                      {"+5", 5},
                      {"1.9", 1},
                      {"1,900", 1},
                      {"0x10", 0},
                      {"010", 10},
                      {"2147483647", 2147483647},
                      {"-2147483648", std::numeric_limits<int>::min()}});
}

TEST(ValuePropertyText, IntegerRefusesWordsAndWhatDoesNotFit) {
    expectRefuses<int>(3, {"abc", "a12", "-", "+", "- 5", ".5", "2147483648", "-2147483649",
                           "99999999999999999999"});
}

TEST(ValuePropertyText, UnsignedTakesNegativeTextsModulo) {
    expectReads<unsigned int>(
        {{"-1", 4294967295U}, {"-4294967295", 1U}, {"4294967295", 4294967295U}, {"12abc", 12U}});
    expectRefuses<unsigned int>(3, {"abc", "4294967296", "-4294967296"});
}

TEST(ValuePropertyText, ShortHasSixteenBits) {
    expectReads<short>({{"32767", 32767}, {"-32768", -32768}, {" 7seven", 7}});
    expectRefuses<short>(3, {"32768", "-32769", "abc"});
}

TEST(ValuePropertyText, DoubleIsReadUpToTheFirstForeignCharacter) {
    expectReads<double>({{"0.1", 0.1},
                         {"12abc", 12.0},
                         {" 1e3", 1000.0},
                         {"+.5", 0.5},
                         {"1,5", 1.0},
                         {"1.5.7", 1.5},
                         {"-2.", -2.0}});
}

TEST(ValuePropertyText, DoubleRefusesWordsAndWhatDoesNotFit) {
    expectRefuses<double>(3.0, {"abc", "nan", "inf", "-inf", ",5", "1e400", "-1e400", "."});
}

TEST(ValuePropertyText, DoubleThatIsNoNumberIsWrittenButNotReadAgain) {
    EXPECT_EQ(textOf(std::nan("")), "nan");
    EXPECT_EQ(textOf(std::numeric_limits<double>::infinity()), "inf");
}

TEST(ValuePropertyText, BoolIsANumberAndOnlyZeroAndOneAreAccepted) {
    expectReads<bool>({{"0", false}, {"1", true}, {" 1", true}, {"01", true}, {"1true", true}});
    expectRefuses<bool>(true, {"true", "false", "yes", "True", "2", "-1", "10", "on"});
    expectRefuses<bool>(false, {"true", "false", "2"});
}

TEST(ValuePropertyText, TextValueIsReadAsOneWord) {
    expectReads<std::string>({{"one", "one"}, {"  one two", "one"}});
}

TEST(ValuePropertyText, IsReadTheSameUnderACommaDecimalLocale) {
    const FrameworkTest::CommaLocale locale;
    expectReads<double>({{"1.5", 1.5}, {"1,5", 1.0}, {"1.234", 1.234}});
    expectReads<int>({{"1.234", 1}, {"1234567", 1234567}});
    expectRefuses<bool>(false, {"yes", "true"});
}

}  // namespace
}  // namespace Quoril::Core
