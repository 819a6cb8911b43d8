#include "tests/sensorfile/TestSupport.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/recording/RowRange.hpp"

#include <Poco/Exception.h>

namespace SensorFileTool {
namespace {

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

void expectRange(const std::string& text, std::uint64_t first, std::uint64_t last) {
    const RowRange range = parseRowRange(text);
    EXPECT_EQ(range.first, first) << text;
    EXPECT_EQ(range.last, last) << text;
}

TEST(RowRangeTest, BothEndsAreRead) {
    expectRange("100:200", 100, 200);
    expectRange("0:1", 0, 1);
    expectRange("007:8", 7, 8);
}

TEST(RowRangeTest, AMissingEndIsThatOfTheFile) {
    expectRange("100:", 100, kMost);
    expectRange(":200", 0, 200);
    expectRange(":", 0, kMost);
}

TEST(RowRangeTest, EmptyRangesAreRanges) {
    expectRange("5:5", 5, 5);
    expectRange(":0", 0, 0);
}

TEST(RowRangeTest, TheLargestNumbersAreRead) {
    expectRange("18446744073709551614:18446744073709551615", kMost - 1, kMost);
}

TEST(RowRangeTest, AnythingElseIsRefusedByItsText) {
    for (const std::string text :
         {"", "5", "5:4", "-1:5", "1:-5", "+1:5", "1.5:3", "a:b", " 1:2", "1:2 ", "1:2:3", "1-2",
          "0x1:2", "18446744073709551616:", ":18446744073709551616"})
        EXPECT_THROW_MESSAGE((void)parseRowRange(text), UsageException,
                             "--rows: '" + text + "' is no range of rows such as 100:200 or 100:");
}

}  // namespace
}  // namespace SensorFileTool
