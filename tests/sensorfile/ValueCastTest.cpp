#include "sensorfile/ValueCast.hpp"
#include "tests/sensorfile/TestSupport.hpp"

#include <cmath>
#include <limits>

namespace SensorFile {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(ValueCastTest, LowBitsTruncateTowardZero) {
    EXPECT_EQ(lowBits(300.7), 300U);
    EXPECT_EQ(lowBits(-1.9), ~std::uint64_t{0});
    EXPECT_EQ(lowBits(-0.9), 0U);
    EXPECT_EQ(lowBits(std::int64_t{-2}), ~std::uint64_t{1});
    EXPECT_EQ(lowBits(std::uint64_t{5}), 5U);
}

TEST(ValueCastTest, LowBitsOfLargeNumbersAreThoseOfTheExactInteger) {
    EXPECT_EQ(lowBits(0x1p63), std::uint64_t{1} << 63);
    EXPECT_EQ(lowBits(-0x1p63), std::uint64_t{1} << 63);
    EXPECT_EQ(lowBits(0x1.8p63), std::uint64_t{3} << 62);
    EXPECT_EQ(lowBits(0x1p64), 0U);
    EXPECT_EQ(lowBits(0x1p64 + 4096), 4096U);
    EXPECT_EQ(lowBits(-0x1p64 - 4096), ~std::uint64_t{4095});
    EXPECT_EQ(lowBits(1e300), 0U);
}

TEST(ValueCastTest, LowBitsOfWhatIsNoNumberAreZero) {
    EXPECT_EQ(lowBits(std::nan("")), 0U);
    EXPECT_EQ(lowBits(kInfinity), 0U);
    EXPECT_EQ(lowBits(-kInfinity), 0U);
}

TEST(ValueCastTest, FitCastTakesTheWholeRangeAndNothingBeyond) {
    EXPECT_EQ(fitCast<std::int16_t>(-32768.99), -32768);
    EXPECT_EQ(fitCast<std::int16_t>(32767.99), 32767);
    EXPECT_THROW_MESSAGE(fitCast<std::int16_t>(32768.0), Poco::RangeException, "Value too large.");
    EXPECT_THROW_MESSAGE(fitCast<std::int16_t>(-32769.0), Poco::RangeException, "Value too small.");
    EXPECT_EQ(fitCast<std::uint64_t>(0x1.fffffffffffffp63), 0xfffffffffffff800U);
    EXPECT_THROW_MESSAGE(fitCast<std::uint64_t>(0x1p64), Poco::RangeException, "Value too large.");
    EXPECT_EQ(fitCast<std::int64_t>(-0x1p63), std::numeric_limits<std::int64_t>::min());
    EXPECT_THROW_MESSAGE(fitCast<std::int64_t>(0x1p63), Poco::RangeException, "Value too large.");
    EXPECT_THROW_MESSAGE(fitCast<std::uint8_t>(-1.0f), Poco::RangeException, "Value too small.");
    EXPECT_THROW_MESSAGE(fitCast<std::int32_t>(std::nan("")), Poco::RangeException,
                         "Value is not a number.");
    EXPECT_THROW_MESSAGE(fitCast<std::int32_t>(-kInfinity), Poco::RangeException,
                         "Value too small.");
    EXPECT_THROW_MESSAGE(fitCast<std::uint8_t>(std::int64_t{-1}), Poco::RangeException,
                         "Value too small.");
    EXPECT_THROW_MESSAGE(fitCast<std::int64_t>(~std::uint64_t{0}), Poco::RangeException,
                         "Value too large.");
}

TEST(ValueCastTest, FloatsRoundAndKeepWhatIsNotFinite) {
    EXPECT_EQ(fitCast<float>(0.1), 0.1f);
    EXPECT_TRUE(std::isnan(fitCast<float>(std::nan(""))));
    EXPECT_EQ(fitCast<float>(-kInfinity), -std::numeric_limits<float>::infinity());
    EXPECT_EQ(fitCast<float>(3.4028235e38), std::numeric_limits<float>::max());
    EXPECT_THROW_MESSAGE(fitCast<float>(3.41e38), Poco::RangeException, "Value too large.");
    EXPECT_THROW_MESSAGE(fitCast<float>(-3.41e38), Poco::RangeException, "Value too small.");
    EXPECT_EQ(fitCast<float>(std::int64_t{16777217}), 16777216.0f);
}

TEST(ValueCastTest, BoolIsWhatPocoMakesOfANumber) {
    for (const double value : {0.0, -0.0, 1.0, -1.0, 0.1, 1e-300, 1e-310, -1e-310,
                               std::numeric_limits<double>::min(), std::nan(""), kInfinity}) {
        EXPECT_EQ(fitCast<bool>(value), Poco::Dynamic::Var(value).convert<bool>()) << value;
    }
    for (const float value : {0.0f, 1e-38f, 1e-40f, -1e-40f, 2.0f}) {
        EXPECT_EQ(fitCast<bool>(value), Poco::Dynamic::Var(value).convert<bool>()) << value;
    }
    EXPECT_TRUE(fitCast<bool>(std::int64_t{-1}));
    EXPECT_FALSE(fitCast<bool>(std::uint64_t{0}));
}

}  // namespace
}  // namespace SensorFile
