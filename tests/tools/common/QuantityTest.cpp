#include "tools/common/Quantity.hpp"
#include "tools/common/UsageException.hpp"

#include <gtest/gtest.h>

namespace SensorFileTool {

namespace {

template <typename Parse>
std::string refusalOf(Parse parse, const std::string& text) {
    try {
        const Quantity quantity = parse("--limit", text);
        return "taken as " + std::to_string(quantity.value);
    } catch (const UsageException& error) {
        return error.message();
    }
}

TEST(Quantity, DurationsHaveUnits) {
    EXPECT_DOUBLE_EQ(parseDuration("--limit", "0.5s").value, 0.5);
    EXPECT_DOUBLE_EQ(parseDuration("--limit", "50 ms").value, 0.05);
    EXPECT_DOUBLE_EQ(parseDuration("--limit", "20us").value, 2e-5);
    EXPECT_DOUBLE_EQ(parseDuration("--limit", "1e2ns").value, 1e-7);
    EXPECT_EQ(parseDuration("--limit", "50 ms").text, "50 ms");
}

TEST(Quantity, SharesHaveUnits) {
    EXPECT_DOUBLE_EQ(parseRatio("--limit", "0.1%").value, 0.001);
    EXPECT_DOUBLE_EQ(parseRatio("--limit", "50 ppm").value, 5e-5);
}

TEST(Quantity, CountsAreWholeNumbers) {
    EXPECT_EQ(parseCount("--limit", "12").value, 12.0);
    EXPECT_EQ(refusalOf(&parseCount, "1.5"), "--limit: '1.5' is no whole number");
}

TEST(Quantity, AnythingElseIsRefused) {
    for (const char* text :
         {"", "1", "ms", "-1ms", "nan ms", "inf ms", "1m", "1msx", "1,5ms", "1%"})
        EXPECT_EQ(refusalOf(&parseDuration, text),
                  std::string("--limit: '") + text + "' is not such as 1ms, 0.5s, 20us or 100ns");
    for (const char* text : {"", "0.1", "-1%", "1s", "%"})
        EXPECT_EQ(refusalOf(&parseRatio, text),
                  std::string("--limit: '") + text + "' is not such as 0.1% or 50ppm");
    for (const char* text : {"", "-1", "x", "1%"})
        EXPECT_EQ(refusalOf(&parseCount, text),
                  std::string("--limit: '") + text + "' is not such as 0 or 10");
}

TEST(Quantity, DurationsAreToldInTheUnitThatNeedsNoZeros) {
    EXPECT_EQ(describeDuration(0.0), "0 s");
    EXPECT_EQ(describeDuration(1e-19), "0 s");
    EXPECT_EQ(describeDuration(135.326642), "135.3 s");
    EXPECT_EQ(describeDuration(1.0), "1 s");
    EXPECT_EQ(describeDuration(0.999999), "1 s");
    EXPECT_EQ(describeDuration(0.0025091), "2.509 ms");
    EXPECT_EQ(describeDuration(-0.01402), "-14.02 ms");
    EXPECT_EQ(describeDuration(7.23e-7), "723 ns");
    EXPECT_EQ(describeDuration(0.017566, 5), "17.566 ms");
}

TEST(Quantity, SharesAreToldInPercent) {
    EXPECT_EQ(describeShare(0.001234), "0.123 %");
    EXPECT_EQ(describeShare(0.0), "0 %");
}

}  // namespace

}  // namespace SensorFileTool
