#include "host/runner/YamlTree.hpp"

#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

using testing::StartsWith;

class YamlTree : public testing::Test {
 protected:
    std::optional<YamlNode> parse(const std::string& text, const YamlLimits& limits = {}) {
        return parseYaml(
            text, "f", [](const std::string&) { return std::nullopt; }, problems_, limits);
    }
    std::string problemsOf(const std::string& text, const YamlLimits& limits = {}) {
        (void)parse(text, limits);
        return problems_.toText();
    }

    Problems problems_;
};

TEST_F(YamlTree, RefusesZeroCharacters) {
    EXPECT_EQ(problemsOf("a: \"good\"\nb: \"a.so\\0.txt\"\n"),
              "f:2:4: a text cannot hold a zero character\n");
}

TEST_F(YamlTree, KeepsTextsOrderAndPlaces) {
    const auto root = parse("b: 1.50\na:\n  - yes\n  - \n  - 'x: y'\n");
    ASSERT_TRUE(root && root->isMap());
    ASSERT_EQ(root->entries.size(), 2U);
    EXPECT_EQ(root->entries[0].key.text, "b");
    EXPECT_EQ(root->entries[0].value.text, "1.50");
    EXPECT_EQ(root->entries[0].value.place.toText(), "f:1:4");
    const YamlNode& list = root->entries[1].value;
    ASSERT_EQ(list.items.size(), 3U);
    EXPECT_EQ(list.items[0].text, "yes");
    EXPECT_EQ(list.items[1].kind, YamlNode::Kind::kNull);
    EXPECT_EQ(list.items[2].text, "x: y");
    EXPECT_EQ(list.items[2].place.toText(), "f:5:5");
    EXPECT_EQ(problems_.toText(), "");
}

TEST_F(YamlTree, KeepsANumberSignThatFollowsNoBlank) {
    const auto root = parse("- input#1\n- input #1\n- {to: rec.input#2, x: 1}\n");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->items[0].text, "input#1");
    EXPECT_EQ(root->items[1].text, "input");
    EXPECT_EQ(root->items[2].entries[0].value.text, "rec.input#2");
}

TEST_F(YamlTree, CopiesAliases) {
    const auto root = parse("a: &x [1, 2]\nb: *x\n");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->entries[1].value.items.size(), 2U);
}

TEST_F(YamlTree, TellsOfDoubleKeysAndKeysThatAreNoTexts) {
    EXPECT_EQ(problemsOf("a: 1\nb: 2\na: 3\n[x]: 4\n"),
              "f:3:1: key 'a' stands twice (first in line 1)\n"
              "f:4:1: a key must be a text\n");
}

TEST_F(YamlTree, TellsOfUndefinedVariablesAndMarksTheValue) {
    const auto root = parse("a: ${NOPE}\n");
    EXPECT_EQ(problems_.toText(), "f:1:4: variable 'NOPE' is not defined and has no default\n");
    ASSERT_TRUE(root);
    EXPECT_TRUE(root->entries[0].value.isBroken);
}

TEST_F(YamlTree, TellsPlaceAndCauseOfASyntaxError) {
    EXPECT_THAT(problemsOf("a: [1, 2\nb: 3\n"), StartsWith("f:2:"));
}

TEST_F(YamlTree, ExplainsAConnectionWithoutQuotationMarks) {
    EXPECT_THAT(
        problemsOf("connections:\n  - a.b -> c.d {buffer: 64, lifo: false}\n"),
        testing::AllOf(StartsWith("f:2:"),
                       testing::HasSubstr("; a connection with settings needs quotation marks")));
}

TEST_F(YamlTree, RefusesNoneAndSeveralDocuments) {
    EXPECT_EQ(problemsOf(""), "f:1:1: the file is empty\n");
    problems_.clear();
    EXPECT_EQ(problemsOf("a: 1\n---\nb: 2\n"), "f:3:1: a second document; a flow file holds one\n");
}

TEST_F(YamlTree, RefusesDeepNesting) {
    YamlLimits limits;
    limits.depth = 3;
    EXPECT_EQ(problemsOf("[[[1]]]", limits), "");
    EXPECT_EQ(problemsOf("[[[[1]]]]", limits), "f:1:4: nested deeper than 3 levels\n");
    problems_.clear();
    EXPECT_THAT(problemsOf(std::string(100000, '[')), testing::HasSubstr("nested deeper than 20"));
}

TEST_F(YamlTree, RefusesAliasesThatGrowWithoutEnd) {
    std::string bomb = "- &a0 [x, x, x, x, x, x, x, x, x, x]\n";
    for (int i = 1; i <= 12; ++i) {
        const std::string before = "*a" + std::to_string(i - 1);
        bomb += "- &a" + std::to_string(i) + " [" + before;
        for (int k = 0; k < 9; ++k)
            bomb += ", " + before;
        bomb += "]\n";
    }
    EXPECT_THAT(problemsOf(bomb), testing::HasSubstr("more than 20000 values"));
}

TEST_F(YamlTree, RefusesAliasesOfLongTexts) {
    std::string text = "- &a " + std::string(100000, 'x') + "\n";
    for (int i = 0; i < 200; ++i)
        text += "- *a\n";
    EXPECT_THAT(problemsOf(text), testing::HasSubstr("bytes of text"));
}

TEST_F(YamlTree, RefusesAnAliasOfItself) {
    EXPECT_THAT(problemsOf("&a [*a]"), StartsWith("f:1:"));
}

TEST_F(YamlTree, SurvivesAnyBytes) {
    const std::string good =
        "a: &x [1, 'two', \"three\\n\"]\nb: {c: *x, d: |\n  text\n  }\n? e\n: !!str f # g\n";
    std::mt19937 random(20240501);
    for (int round = 0; round < 3000; ++round) {
        std::string text = good;
        for (int change = 0; change < 4; ++change)
            text[random() % text.size()] = static_cast<char>(random() % 256);
        const auto root = parse(text.substr(0, random() % (text.size() + 1)));
        EXPECT_TRUE(root || problems_.hasErrors());
        problems_.clear();
    }
}

TEST_F(YamlTree, TellsOfAnEndInTheMiddleWithinTheText) {
    EXPECT_THAT(problemsOf("a: b\n\"x\\"), StartsWith("f:2:4: "));
}

TEST_F(YamlTree, RefusesNulBytes) {
    EXPECT_EQ(problemsOf(std::string("a: b\nc: d\0n", 11)),
              "f:2:5: a NUL byte, which no text has\n");
    EXPECT_EQ(parse(std::string("a: b\0", 6)), std::nullopt);
}

TEST_F(YamlTree, ReadsWideText) {
    const auto root =
        parse(std::string("\xff\xfe"
                          "a\0:\0 \0b\0",
                          10));
    ASSERT_TRUE(root && root->isMap());
    EXPECT_EQ(root->entries[0].value.text, "b");
}

TEST_F(YamlTree, LimitsWhatAnchorsWithinAnchorsKeep) {
    YamlLimits limits;
    limits.nodes = 10;
    EXPECT_TRUE(parse("&a [x, &b [y, z]]", limits));
    EXPECT_EQ(problemsOf("&a [&b [&c [1, 2, 3]]]", limits), "f:1:1: more than 10 values\n");
    problems_.clear();
    limits.nodes = 100;
    limits.bytes = 10;
    EXPECT_EQ(problemsOf("&a [&b [\"123456\"]]", limits), "f:1:1: more than 10 bytes of text\n");
}

}  // namespace
}  // namespace Quoril::Runner
