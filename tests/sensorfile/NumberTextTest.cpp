#include "sensorfile/NumberText.hpp"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

// Streams of the classic locale are the reference: every text and every value must be the one that
// they give.

namespace SensorFile {
namespace {

using Limits = std::numeric_limits<double>;

std::string fixedText(double value, int precision, bool trimZeros = false) {
    std::array<char, kMaxNumberText> text{};
    return {text.data(), formatFixed(text.data(), value, precision, trimZeros)};
}

std::string streamText(double value, int precision) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << std::fixed << std::setprecision(precision) << value;
    return stream.str();
}

std::string trimmed(std::string text) {
    if (text.find('.') == std::string::npos) return text;
    while (text.back() == '0')
        text.pop_back();
    if (text.back() == '.') text.pop_back();
    return text;
}

void expectStreamText(double value, int precision) {
    const std::string expected = streamText(value, precision);
    ASSERT_EQ(fixedText(value, precision), expected) << "precision " << precision;
    ASSERT_EQ(fixedText(value, precision, true), trimmed(expected)) << "precision " << precision;
}

void expectStreamTextAtEveryPrecision(double value) {
    for (int precision = 0; precision <= kMaxPrecision; ++precision) {
        ASSERT_NO_FATAL_FAILURE(expectStreamText(value, precision));
        ASSERT_NO_FATAL_FAILURE(expectStreamText(-value, precision));
    }
}

// One seed for all loops: a failure comes back on the next run.
std::mt19937_64 randomNumbers() {
    return std::mt19937_64{20260523};
}

/// Magnitudes of all sizes, most of them short decimals as sensors give them.
double randomShortDecimal(std::mt19937_64& random) {
    const auto digits = static_cast<double>(random() % 1'000'000'000);
    const auto decimals = static_cast<double>(random() % 12);
    return digits / std::pow(10.0, decimals);
}

TEST(FormatFixed, TrimsZerosAndPointOnlyWhenThereIsAPoint) {
    struct Case {
        double value;
        int precision;
        const char* text;
    };
    const std::vector<Case> cases = {
        {3.0, 5, "3"},
        {0.1, 5, "0.1"},
        {1e-7, 5, "0"},
        {0.005, 5, "0.005"},
        {-1e-7, 5, "-0"},
        {-0.0, 5, "-0"},
        {1.5, 5, "1.5"},
        {2.0, 5, "2"},
        {120.0, 0, "120"},
        {120.0, 1, "120"},
        {0.0, 0, "0"},
        {-0.0, 0, "-0"},
        {1e20, 3, "100000000000000000000"},
        {999999.9999996, 6, "1000000"},
    };
    for (const auto& [value, precision, text] : cases) {
        EXPECT_EQ(fixedText(value, precision, true), text) << value;
    }
}

TEST(FormatFixed, KeepsZerosWhenAsked) {
    EXPECT_EQ(fixedText(2.0, 5), "2.00000");
    EXPECT_EQ(fixedText(-0.0, 3), "-0.000");
}

TEST(FormatFixed, WritesNonFiniteValuesAsStreamsDo) {
    for (const bool trim : {false, true}) {
        EXPECT_EQ(fixedText(Limits::quiet_NaN(), 6, trim), "nan");
        EXPECT_EQ(fixedText(-Limits::quiet_NaN(), 6, trim), "-nan");
        EXPECT_EQ(fixedText(Limits::infinity(), 6, trim), "inf");
        EXPECT_EQ(fixedText(-Limits::infinity(), 6, trim), "-inf");
    }
    EXPECT_EQ(streamText(-Limits::quiet_NaN(), 6), "-nan");
}

TEST(FormatFixed, NegativePrecisionCountsAsSixAndHugePrecisionAsTwenty) {
    EXPECT_EQ(fixedText(1.25, -1), streamText(1.25, -1));
    EXPECT_EQ(fixedText(1.25, -1), "1.250000");
    EXPECT_EQ(fixedText(0.1, 1000), streamText(0.1, 20));
}

TEST(FormatFixed, LongestTextFits) {
    EXPECT_EQ(fixedText(-Limits::max(), 20), streamText(-Limits::max(), 20));
    EXPECT_LE(fixedText(-Limits::max(), 20).size(), kMaxNumberText);
}

TEST(FormatFixed, ExactHalvesRoundToEven) {
    EXPECT_EQ(fixedText(0.5, 0), "0");
    EXPECT_EQ(fixedText(1.5, 0), "2");
    EXPECT_EQ(fixedText(2.5, 0), "2");
    EXPECT_EQ(fixedText(0.125, 2), "0.12");
    EXPECT_EQ(fixedText(0.375, 2), "0.38");
    for (int power = 1; power <= 24; ++power) {
        for (int odd = 1; odd < 1000; odd += 2) {
            const double half = std::ldexp(odd, -power);
            for (int precision = 0; precision <= kMaxPrecision; ++precision) {
                ASSERT_NO_FATAL_FAILURE(expectStreamText(half, precision));
            }
        }
    }
}

TEST(FormatFixed, NeighboursOfPowersOfTwoAndTen) {
    const auto expectNeighbours = [](double value) {
        for (const double target : {0.0, Limits::infinity()}) {
            ASSERT_NO_FATAL_FAILURE(
                expectStreamTextAtEveryPrecision(std::nextafter(value, target)));
        }
        ASSERT_NO_FATAL_FAILURE(expectStreamTextAtEveryPrecision(value));
    };
    for (int power = -1074; power <= 1023; ++power) {
        ASSERT_NO_FATAL_FAILURE(expectNeighbours(std::ldexp(1.0, power)));
    }
    for (int power = -30; power <= 30; ++power) {
        ASSERT_NO_FATAL_FAILURE(expectNeighbours(std::pow(10.0, power)));
        ASSERT_NO_FATAL_FAILURE(expectNeighbours(5.0 * std::pow(10.0, power)));
    }
}

TEST(FormatFixed, RandomBitPatterns) {
    auto random = randomNumbers();
    for (int i = 0; i < 10'000; ++i) {
        const auto value = std::bit_cast<double>(random());
        ASSERT_NO_FATAL_FAILURE(expectStreamTextAtEveryPrecision(value)) << value;
    }
}

TEST(FormatFixed, RandomMantissasAroundOne) {
    auto random = randomNumbers();
    for (int i = 0; i < 20'000; ++i) {
        const auto mantissa = static_cast<double>(random() >> 11);
        const int power = static_cast<int>(random() % 160) - 140;
        ASSERT_NO_FATAL_FAILURE(expectStreamTextAtEveryPrecision(std::ldexp(mantissa, power)));
    }
}

TEST(FormatFixed, RandomShortDecimals) {
    auto random = randomNumbers();
    for (int i = 0; i < 20'000; ++i) {
        ASSERT_NO_FATAL_FAILURE(expectStreamTextAtEveryPrecision(randomShortDecimal(random)));
    }
}

RC_GTEST_PROP(FormatFixed, GivesTheStreamsTextForAnyDouble, (std::uint64_t bits)) {
    const auto value = std::bit_cast<double>(bits);
    const int precision = *rc::gen::inRange(0, kMaxPrecision + 1);
    RC_ASSERT(fixedText(value, precision) == streamText(value, precision));
    RC_ASSERT(fixedText(value, precision, true) == trimmed(streamText(value, precision)));
}

// std::to_chars is the reference of the shortest text.

template <typename T>
std::string shortestText(T value) {
    std::array<char, kMaxShortestText> text{};
    return {text.data(), formatShortest(text.data(), value)};
}

template <typename T>
void expectShortest(T value) {
    std::array<char, 64> text{};
    const std::string expected(text.data(), std::to_chars(text.data(), text.end(), value).ptr);
    ASSERT_EQ(shortestText(value), expected);
}

TEST(FormatShortest, WritesFewDecimalsZerosAndExponents) {
    EXPECT_EQ(shortestText(0.1), "0.1");
    EXPECT_EQ(shortestText(-0.0), "-0");
    EXPECT_EQ(shortestText(-12.000000001), "-12.000000001");
    EXPECT_EQ(shortestText(999999.999999999), "999999.999999999");
    EXPECT_EQ(shortestText(10000.0), "10000");
    EXPECT_EQ(shortestText(100000.0), "1e+05");
    EXPECT_EQ(shortestText(100001.5), "100001.5");
    EXPECT_EQ(shortestText(0.001), "0.001");
    EXPECT_EQ(shortestText(0.0001), "1e-04");
    EXPECT_EQ(shortestText(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(shortestText(-Limits::infinity()), "-inf");
    EXPECT_EQ(shortestText(-Limits::max()), "-1.7976931348623157e+308");
}

TEST(FormatShortest, DecimalsOfAnyLengthAndTheirNeighbours) {
    for (int digits = 1; digits <= 17; ++digits) {
        for (int exponent = -12; exponent <= 9; ++exponent) {
            const double value = 12345678901234567e-16 * std::pow(10.0, exponent);
            std::ostringstream text;
            text << std::scientific << std::setprecision(digits - 1) << value;
            const double shortened = std::stod(text.str());
            for (const double one : {shortened, std::nextafter(shortened, 0.0),
                                     std::nextafter(shortened, Limits::max())}) {
                ASSERT_NO_FATAL_FAILURE(expectShortest(one));
                ASSERT_NO_FATAL_FAILURE(expectShortest(-one));
            }
        }
    }
}

RC_GTEST_PROP(FormatShortest, GivesTheTextOfToCharsForAnyDouble, (std::uint64_t bits)) {
    expectShortest(std::bit_cast<double>(bits));
}

RC_GTEST_PROP(FormatShortest, GivesTheTextOfToCharsForShortDecimals, (std::int64_t number)) {
    for (const double unit : {1e2, 1e5, 1e9, 1e10})
        expectShortest(static_cast<double>(number % 1'000'000'000'000'000) / unit);
}

TEST(FormatShortest, WritesFloatsAsFloats) {
    EXPECT_EQ(shortestText(0.1F), "0.1");
    EXPECT_EQ(shortestText(-9.80665F), "-9.80665");
    EXPECT_EQ(shortestText(15.999999F), "15.999999");
    EXPECT_EQ(shortestText(127.99999F), "127.99999");
    EXPECT_EQ(shortestText(1023.9999F), "1023.9999");
    EXPECT_EQ(shortestText(1e-4F), "1e-04");
    EXPECT_EQ(shortestText(0.3333333333F), "0.33333334");
}

// Of each doubling and its surroundings.
TEST(FormatShortest, FloatsOfAllSizesAreAsToCharsWritesThem) {
    constexpr std::uint32_t kStep = 9973;
    for (auto bits = std::bit_cast<std::uint32_t>(1e-4F); bits < std::bit_cast<std::uint32_t>(4e3F);
         bits += kStep)
        ASSERT_NO_FATAL_FAILURE(expectShortest(std::bit_cast<float>(bits)));
}

RC_GTEST_PROP(FormatShortest, GivesTheTextOfToCharsForAnyFloat, (std::uint32_t bits)) {
    expectShortest(std::bit_cast<float>(bits));
}

RC_GTEST_PROP(FormatShortest, GivesTheTextOfToCharsForShortFloats, (std::int32_t number)) {
    for (const float unit : {1e2F, 1e4F, 1e5F, 1e6F})
        expectShortest(static_cast<float>(number % 100'000'000) / unit);
}

// ---- Text to number ----

template <typename T>
std::from_chars_result parse(const char* first, const char* last, T& value) {
    if constexpr (std::is_same_v<T, double>) {
        return parseDouble(first, last, value);
    } else if constexpr (std::is_same_v<T, float>) {
        return parseFloat(first, last, value);
    } else {
        return parseInteger(first, last, value);
    }
}

template <typename T>
bool isSame(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) return a == b && std::signbit(a) == std::signbit(b);
    return a == b;
}

/// A stream of the classic locale and ours take the same value and the same number of characters,
/// or both take none. A tab follows the number, as in a file.
template <typename T>
void expectStreamValue(const std::string& number) {
    const std::string text = number + "\t";
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    T expected{};
    stream >> expected;
    const bool isTaken = !stream.fail();

    T value = 77;
    const auto result = parse(text.data(), text.data() + text.size(), value);
    ASSERT_EQ(result.ec == std::errc{}, isTaken) << '"' << number << '"';
    if (isTaken) {
        ASSERT_TRUE(isSame(value, expected)) << number << " is " << expected << ", not " << value;
        ASSERT_EQ(result.ptr - text.data(), stream.tellg()) << number;
    } else {
        ASSERT_EQ(value, T{77}) << "set although refused: " << number;
    }
}

void expectStreamFloatAndDouble(const std::string& number) {
    ASSERT_NO_FATAL_FAILURE(expectStreamValue<double>(number));
    ASSERT_NO_FATAL_FAILURE(expectStreamValue<float>(number));
}

TEST(ParseDouble, TakesTheGrammarOfStreams) {
    const std::vector<std::string> numbers = {"0",
                                              "-0",
                                              "+0",
                                              "1",
                                              "+1.5",
                                              "-1.5",
                                              ".5",
                                              "-.5",
                                              "+.5",
                                              "5.",
                                              "5.e3",
                                              "5.e-3",
                                              ".5e1",
                                              "1e5",
                                              "1E5",
                                              "1e+5",
                                              "1e-5",
                                              "00012.50",
                                              "1.5.3",
                                              "1e5.3",
                                              "1e5e3",
                                              "1.5-2",
                                              "12abc",
                                              "0x10",
                                              "1,5",
                                              "1 5",
                                              "1e05",
                                              "1e-0",
                                              "0e99999999999999999999",
                                              "0.0e-400",
                                              "-0e400",
                                              "1e22",
                                              "1e23",
                                              "1e-22",
                                              "1e-23",
                                              "9007199254740992",
                                              "9007199254740993",
                                              "9007199254740993e22",
                                              "9007199254740995e-22",
                                              "1234567890123456789",
                                              "12345678901234567890",
                                              "123456789012345678901234567890",
                                              "0.00000000000000000000000001",
                                              "1.7976931348623157e308",
                                              "1.7976931348623159e308",
                                              "-1e309",
                                              "1e400",
                                              "1e99999999999999999",
                                              "4.9e-324",
                                              "2.4e-324",
                                              "-1e-400",
                                              "1e-99999999999999999999",
                                              "2.2250738585072011e-308",
                                              "3.4028235e38",
                                              "3.4028236e38",
                                              "1e39",
                                              "1.4e-45",
                                              "0.6e-45",
                                              "1.17549435e-38",
                                              "1e-39",
                                              "16777217",
                                              "16777216.9999999",
                                              "16777217.0000001",
                                              "0.1",
                                              "0.3",
                                              "33554431.0"};
    for (const auto& number : numbers) {
        ASSERT_NO_FATAL_FAILURE(expectStreamFloatAndDouble(number));
    }
    const std::string zeros(400, '0');
    for (const auto& number : {"0." + zeros + "1e401", "1" + zeros + "e-400", "1" + zeros,
                               "0." + zeros + "1", zeros + "1.5", "1.5" + zeros}) {
        ASSERT_NO_FATAL_FAILURE(expectStreamFloatAndDouble(number));
    }
}

TEST(ParseDouble, RefusesWhatStreamsRefuse) {
    const std::vector<std::string> texts = {"",   "-",   "+",    ".",     "-.", "e5",  ".e5",
                                            "1e", "1e+", "1e-",  "1.5ex", "x",  "+-1", "--1",
                                            " 1", "\t",  "+nan", "+inf",  "na", "-in", "NaN"};
    for (const auto& text : texts) {
        double value = 77;
        const auto result = parseDouble(text.data(), text.data() + text.size(), value);
        EXPECT_EQ(result.ec, std::errc::invalid_argument) << text;
        EXPECT_EQ(result.ptr, text.data()) << text;
        EXPECT_EQ(value, 77) << text;
        if (text == " 1") continue;  // streams skip the blank
        ASSERT_NO_FATAL_FAILURE(expectStreamFloatAndDouble(text));
    }
}

TEST(ParseDouble, TooLargeNumberIsConsumedAndOutOfRange) {
    const std::string text = "-123e400\t";
    double value = 77;
    const auto result = parseDouble(text.data(), text.data() + text.size(), value);
    EXPECT_EQ(result.ec, std::errc::result_out_of_range);
    EXPECT_EQ(*result.ptr, '\t');
    EXPECT_EQ(value, 77);
}

TEST(ParseDouble, NumberMayEndWithTheText) {
    const std::string text = "12.5e1";
    double value = 0;
    for (const std::size_t length : {2U, 3U, 4U, 6U}) {
        EXPECT_EQ(parseDouble(text.data(), text.data() + length, value).ptr, text.data() + length);
    }
    EXPECT_EQ(value, 125.0);
}

TEST(ParseDouble, TakesTheNonFiniteTextsOfOurOwnWriter) {
    for (const double written :
         {Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
        const std::string text = fixedText(written, 6) + "\t";
        double value = 77;
        float single = 77;
        const char* const last = text.data() + text.size();
        EXPECT_EQ(parseDouble(text.data(), last, value).ptr, last - 1);
        EXPECT_EQ(parseFloat(text.data(), last, single).ptr, last - 1);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(written));
        EXPECT_EQ(std::isnan(single), std::isnan(written));
        EXPECT_EQ(std::signbit(single), std::signbit(written));
    }
}

TEST(ParseDouble, RandomShortDecimalsInFixedAndScientificNotation) {
    auto random = randomNumbers();
    for (int i = 0; i < 100'000; ++i) {
        const double value = randomShortDecimal(random);
        const int precision = static_cast<int>(random() % (kMaxPrecision + 1));
        ASSERT_NO_FATAL_FAILURE(expectStreamFloatAndDouble(fixedText(-value, precision)));
        std::ostringstream scientific;
        scientific.imbue(std::locale::classic());
        scientific << std::scientific << std::setprecision(precision) << value;
        ASSERT_NO_FATAL_FAILURE(expectStreamFloatAndDouble(scientific.str()));
    }
}

TEST(ParseDouble, RandomBitPatternsInAllLengths) {
    auto random = randomNumbers();
    for (int i = 0; i < 100'000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value)) continue;
        std::ostringstream text;
        text.imbue(std::locale::classic());
        text << std::setprecision(static_cast<int>(1 + random() % 25)) << value;
        ASSERT_NO_FATAL_FAILURE(expectStreamFloatAndDouble(text.str()));
    }
}

TEST(ParseFloat, DecimalsBesideTheMiddleOfTwoFloatsRoundOnce) {
    auto random = randomNumbers();
    for (int i = 0; i < 50'000; ++i) {
        const auto low =
            std::bit_cast<float>(static_cast<std::uint32_t>(0x3a00'0000 + random() % 0x0d00'0000));
        const double middle =
            (double{low} + double{std::nextafter(low, std::numeric_limits<float>::max())}) / 2;
        std::ostringstream text;
        text.imbue(std::locale::classic());
        text << std::setprecision(static_cast<int>(12 + random() % 12)) << middle;
        ASSERT_NO_FATAL_FAILURE(expectStreamFloatAndDouble(text.str()));
    }
}

TEST(ParseDouble, RandomCharacterRunsAreTakenOrRefusedAsByStreams) {
    auto random = randomNumbers();
    const std::string alphabet = "0123456789..++--eE1205";
    for (int i = 0; i < 200'000; ++i) {
        std::string text;
        for (auto length = random() % 12; length > 0; --length) {
            text += alphabet[static_cast<std::size_t>(random() % alphabet.size())];
        }
        ASSERT_NO_FATAL_FAILURE(expectStreamFloatAndDouble(text));
    }
}

TEST(ParseDouble, AnyOtherCharacterEndsTheDigitsWhereverItStands) {
    for (int character = 0; character < 256; ++character) {
        for (std::size_t count = 0; count <= 17; ++count) {
            const std::string text = "7." + std::string("12345678901234567", count) +
                                     static_cast<char>(character) + "98765432";
            ASSERT_NO_FATAL_FAILURE(expectStreamFloatAndDouble(text));
        }
    }
}

RC_GTEST_PROP(ParseDouble, WrittenWithSeventeenDigitsComesBackToTheBit, (std::uint64_t bits)) {
    const auto value = std::bit_cast<double>(bits);
    RC_PRE(std::isfinite(value));
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::setprecision(Limits::max_digits10) << value;
    const std::string written = text.str();
    double parsed = 0;
    const auto result = parseDouble(written.data(), written.data() + written.size(), parsed);
    RC_ASSERT(result.ec == std::errc{});
    RC_ASSERT(std::bit_cast<std::uint64_t>(parsed) == bits);
}

// ---- Integers ----

template <typename T>
class ParseInteger : public testing::Test {};
using StreamIntegers = testing::Types<std::uint16_t, std::int16_t, std::uint32_t, std::int32_t,
                                      std::uint64_t, std::int64_t>;
TYPED_TEST_SUITE(ParseInteger, StreamIntegers);

TYPED_TEST(ParseInteger, TakesWhatStreamsTake) {
    const std::vector<std::string> texts = {"0",
                                            "-0",
                                            "+0",
                                            "7",
                                            "+7",
                                            "-7",
                                            "007",
                                            "010",
                                            "0x10",
                                            "12.5",
                                            "1e3",
                                            "-1",
                                            "5a",
                                            "",
                                            "+",
                                            "-",
                                            "+-1",
                                            "-+1",
                                            "--1",
                                            "x",
                                            "255",
                                            "256",
                                            "32767",
                                            "32768",
                                            "-32768",
                                            "-32769",
                                            "65535",
                                            "65536",
                                            "-65535",
                                            "-65536",
                                            "2147483647",
                                            "2147483648",
                                            "-2147483648",
                                            "-2147483649",
                                            "4294967295",
                                            "4294967296",
                                            "-4294967295",
                                            "9223372036854775807",
                                            "9223372036854775808",
                                            "-9223372036854775808",
                                            "-9223372036854775809",
                                            "18446744073709551615",
                                            "18446744073709551616",
                                            "-18446744073709551615",
                                            "-18446744073709551616",
                                            "99999999999999999999999999999999"};
    for (const auto& text : texts) {
        ASSERT_NO_FATAL_FAILURE(expectStreamValue<TypeParam>(text));
    }
}

TYPED_TEST(ParseInteger, EveryValueComesBack) {
    auto random = randomNumbers();
    for (int i = 0; i < 10'000; ++i) {
        const auto value = static_cast<TypeParam>(random());
        const std::string text = std::to_string(value);
        TypeParam parsed{};
        parseInteger(text.data(), text.data() + text.size(), parsed);
        ASSERT_EQ(parsed, value);
    }
}

TEST(ParseIntegerOfEightBits, IsANumberNotACharacter) {
    const std::string text = "200\t";
    std::uint8_t value = 0;
    EXPECT_EQ(*parseInteger(text.data(), text.data() + text.size(), value).ptr, '\t');
    EXPECT_EQ(value, 200);
    std::int8_t small = 7;
    const auto result = parseInteger(text.data(), text.data() + text.size(), small);
    EXPECT_EQ(result.ec, std::errc::result_out_of_range);
    EXPECT_EQ(*result.ptr, '\t');
    EXPECT_EQ(small, 7);
}

}  // namespace
}  // namespace SensorFile
