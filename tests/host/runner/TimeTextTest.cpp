#include "host/runner/TimeText.hpp"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

using namespace std::chrono_literals;

TEST(TimeText, HasANumberAndAUnit) {
    EXPECT_EQ(parseTime("200ms"), 200ms);
    EXPECT_EQ(parseTime("1.5s"), 1500ms);
    EXPECT_EQ(parseTime("2min"), 120s);
    EXPECT_EQ(parseTime("2 min"), 120s);
    EXPECT_EQ(parseTime("0s"), 0s);
    EXPECT_EQ(parseTime("0.001ms"), 1us);
    EXPECT_EQ(parseTime("1e3s"), 1000s);
}

TEST(TimeText, IsRefusedOtherwise) {
    for (const char* text :
         {"", "s", "10", "1,5s", "-1s", "1 h", "1.5.s", "ten s", "nan s", "1s "}) {
        try {
            (void)parseTime(text);
            FAIL() << text;
        } catch (const Poco::DataFormatException& error) {
            EXPECT_EQ(error.message(),
                      "'" + std::string(text) + "' is not a time; write e.g. 200ms, 1.5s or 2min");
        }
    }
}

TEST(TimeText, HasAnUpperBound) {
    EXPECT_EQ(parseTime("86400000s"), 24h * 1000);
    EXPECT_THROW((void)parseTime("86400001s"), Poco::DataFormatException);
    EXPECT_THROW((void)parseTime("1e300min"), Poco::DataFormatException);
}

}  // namespace
}  // namespace Quoril::Runner
