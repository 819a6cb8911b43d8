#include "host/runner/Variables.hpp"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

std::optional<std::string> lookUp(const std::string& name) {
    if (name == "HOME") return "/home/u";
    if (name == "EMPTY") return "";
    if (name == "DOLLAR") return "${HOME}";
    return std::nullopt;
}

std::string messageOf(const std::string& text) {
    try {
        return "expanded to " + expandVariables(text, lookUp);
    } catch (const Poco::DataFormatException& error) {
        return error.message();
    }
}

TEST(Variables, AreReplaced) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"plain", "plain"},
        {"${HOME}", "/home/u"},
        {"a${HOME}b${HOME}c", "a/home/ub/home/uc"},
        {"${EMPTY}", ""},
        {"${EMPTY:-x}", "x"},
        {"${NONE:-x y}", "x y"},
        {"${NONE:-}", ""},
        {"${HOME:-x}", "/home/u"},
        {"${NONE:-a:-b}", "a:-b"},
        {"$$", "$"},
        {"$${HOME}", "${HOME}"},
        {"$HOME", "$HOME"},
        {"5 $", "5 $"},
        {"${DOLLAR}", "${HOME}"},
    };
    for (const auto& [text, expanded] : cases)
        EXPECT_EQ(expandVariables(text, lookUp), expanded) << text;
}

TEST(Variables, AreRefusedWithTheCause) {
    EXPECT_EQ(messageOf("a ${NONE}"), "variable 'NONE' is not defined and has no default");
    EXPECT_EQ(messageOf("${HOME"), "'${' without '}' (write '$$' for a dollar)");
    EXPECT_EQ(messageOf("${}"), "'' is not the name of a variable");
    EXPECT_EQ(messageOf("${1A}"), "'1A' is not the name of a variable");
    EXPECT_EQ(messageOf("${A B}"), "'A B' is not the name of a variable");
    EXPECT_EQ(messageOf("${A:-${HOME}}"),
              "the default of variable 'A' cannot hold another variable");
}

TEST(Variables, ComeFromTheEnvironment) {
    EXPECT_TRUE(lookUpEnvironment("PATH"));
    EXPECT_FALSE(lookUpEnvironment("QUORIL_SURELY_NOT_DEFINED"));
}

TEST(Variables, DoNotFillTheMemory) {
    const std::string megabyte(std::size_t{1} << 20U, 'x');
    const auto lookUp = [&](const std::string&) { return std::optional(megabyte); };
    EXPECT_EQ(expandVariables("${A}${A}${A}${A}${A}${A}${A}${A}", lookUp).size(),
              8 * megabyte.size());
    EXPECT_THROW((void)expandVariables("${A}${A}${A}${A}${A}${A}${A}${A}${A}", lookUp),
                 Poco::DataFormatException);
}

}  // namespace
}  // namespace Quoril::Runner
