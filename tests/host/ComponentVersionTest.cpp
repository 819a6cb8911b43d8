#include "framework/ComponentVersion.hpp"

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

struct Case {
    const char* text;
    int major;
    int minor;
    int revision;
};

TEST(ComponentVersionTest, NumbersAreReadAndMissingOnesCountAsZero) {
    const Case cases[] = {
        {"2.5.0", 2, 5, 0}, {"0.10.0", 0, 10, 0}, {"3", 3, 0, 0},
        {"3.4", 3, 4, 0},   {"", 0, 0, 0},        {"1.2.3.4", 1, 2, 3},
        {"x.7", 0, 7, 0},   {"1..3", 1, 0, 3},    {"99999999999.1", 0, 1, 0},
    };
    for (const Case& expected : cases) {
        const ComponentVersion version(expected.text);
        EXPECT_EQ(version.toString(), expected.text);
        EXPECT_EQ(version.getMajor(), expected.major) << expected.text;
        EXPECT_EQ(version.getMinor(), expected.minor) << expected.text;
        EXPECT_EQ(version.getRevision(), expected.revision) << expected.text;
    }
}

}  // namespace
}  // namespace Quoril::Core
