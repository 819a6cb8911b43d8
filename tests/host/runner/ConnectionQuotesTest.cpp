#include "host/runner/ConnectionQuotes.hpp"

#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

/// What becomes of one line of the section.
std::string quoteLine(const std::string& line) {
    const std::string section = "connections:\n";
    return quoteConnections(section + line).substr(section.size());
}

TEST(ConnectionQuotes, GoAroundAConnectionWithSettings) {
    EXPECT_EQ(quoteLine("  - imu.acc -> rec.input#1 {buffer: 64, lifo: false}\n"),
              "  - 'imu.acc -> rec.input#1 {buffer: 64, lifo: false}'\n");
    EXPECT_EQ(quoteLine("-   a.b->c.d {lifo: true}"), "-   'a.b->c.d {lifo: true}'");
    EXPECT_EQ(quoteLine("- a.Time (s) -> b.c{1} {buffer: 2}"),
              "- 'a.Time (s) -> b.c{1} {buffer: 2}'");
    EXPECT_EQ(quoteLine("- a.it's -> b.c {buffer: 2}"), "- 'a.it''s -> b.c {buffer: 2}'");
    EXPECT_EQ(quoteLine("- ${F}.b -> c.d {buffer: ${N:-64}}"),
              "- '${F}.b -> c.d {buffer: ${N:-64}}'");
}

TEST(ConnectionQuotes, LeaveCommentsBlanksAndLineEndsWhereTheyAre) {
    EXPECT_EQ(quoteLine("- a.b -> c.d {buffer: 2}  # wide {x}\n"),
              "- 'a.b -> c.d {buffer: 2}'  # wide {x}\n");
    EXPECT_EQ(quoteLine("- a.b -> c.d {buffer: 2} \t\r\n"), "- 'a.b -> c.d {buffer: 2}' \t\r\n");
    EXPECT_EQ(quoteLine("# first\n\n- a.b -> c.d {buffer: 2}\n"),
              "# first\n\n- 'a.b -> c.d {buffer: 2}'\n");
}

TEST(ConnectionQuotes, LeaveEverythingElseAlone) {
    for (const char* line :
         {"- a.b -> c.d\n", "- 'a.b -> c.d {buffer: 2}'\n", "- \"a.b -> c.d {buffer: 2}\"\n",
          "- {from: a.b, to: c.d, buffer: 2}\n", "- [a.b -> c.d {buffer: 2}]\n",
          "- # a.b -> c.d {buffer: 2}\n", "# - a.b -> c.d {buffer: 2}\n", "- x: a.b -> c.d {}\n",
          "- a.b -> c.${D:-e}\n", "- a.b {buffer: 2}\n", "- a.b -> c.d {buffer: 2} x\n",
          "- a.b -> c.d {buffer: 2,\n", "-a.b -> c.d {buffer: 2}\n", "-\n", "- \n", "\n", "",
          "a.b -> c.d {buffer: 2}\n", "  a.b -> c.d {buffer: 2}\n"})
        EXPECT_EQ(quoteLine(line), line);
}

TEST(ConnectionQuotes, StayWithinTheSection) {
    const std::string item = "- a.b -> c.d {buffer: 2}\n";
    const std::string quoted = "- 'a.b -> c.d {buffer: 2}'\n";
    EXPECT_EQ(
        quoteConnections("filters:\n" + item + "connections: # all\n" + item + "stop:\n" + item),
        "filters:\n" + item + "connections: # all\n" + quoted + "stop:\n" + item);
    EXPECT_EQ(quoteConnections("connections:\n---\n" + item), "connections:\n---\n" + item);
    EXPECT_EQ(quoteConnections("  connections:\n" + item), "  connections:\n" + item);
    EXPECT_EQ(quoteConnections("connections:#\n" + item), "connections:#\n" + item);
    EXPECT_EQ(quoteConnections("connections:\r\n" + item), "connections:\r\n" + quoted);
    EXPECT_EQ(quoteConnections(""), "");
}

}  // namespace
}  // namespace Quoril::Runner
