#include "host/filters/ColumnSelection.hpp"
#include "tests/host/filters/Support.hpp"

#include <random>

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using Part = ColumnReference::Part;
using TestKit::messageOf;

// A column as "name", "#position", "name[2]" or "name[]".
std::string describe(const ColumnReference& column) {
    std::string text = column.position > 0 ? "#" + std::to_string(column.position) : column.name;
    if (column.part == Part::kElement) text += "[" + std::to_string(column.element) + "]";
    if (column.part == Part::kAllElements) text += "[]";
    return text;
}

std::string describe(const std::string& text) {
    std::string described;
    for (const PinColumns& pin : parseColumnSelection(text)) {
        described += pin.pin + "{";
        for (const ColumnReference& column : pin.columns)
            described += "<" + describe(column) + ">";
        described += "}";
    }
    return described;
}

TEST(ColumnSelectionTest, PinsAndColumnsAreReadInTheirOrder) {
    EXPECT_EQ(describe("acc=ax,ay,az;t=time"), "acc{<ax><ay><az>}t{<time>}");
    EXPECT_EQ(describe("t=time"), "t{<time>}");
    EXPECT_EQ(describe(""), "");
    EXPECT_EQ(describe("  "), "");
}

TEST(ColumnSelectionTest, BlanksAroundNamesAreIgnoredAndWithinThemKept) {
    EXPECT_EQ(describe("  my acc = Acc X (g) ,\tAcc Y (g) ; t = Time (s) ; "),
              "my acc{<Acc X (g)><Acc Y (g)>}t{<Time (s)>}");
}

TEST(ColumnSelectionTest, NumbersAreColumnsByPosition) {
    EXPECT_EQ(describe("a=#3, 4 ,1000000"), "a{<#3><#4><#1000000>}");
}

TEST(ColumnSelectionTest, QuotedNamesMayHoldAnything) {
    EXPECT_EQ(describe(R"("a;b"="x,y","3","#4","say ""hi"" = [1]")"),
              R"(a;b{<x,y><3><#4><say "hi" = [1]>})");
    EXPECT_EQ(parseColumnReference(R"("3")").position, 0U);
    EXPECT_EQ(parseColumnReference(R"("3")").name, "3");
}

TEST(ColumnSelectionTest, ElementsOfListsAreReadFromPositionsAndNames) {
    EXPECT_EQ(describe(R"(a=#3[0],3[1],name[2],my list [12],"x,y"[3])"),
              "a{<#3[0]><#3[1]><name[2]><my list[12]><x,y[3]>}");
    EXPECT_EQ(describe(R"(a=#3[],name[],"x,y"[])"), "a{<#3[]><name[]><x,y[]>}");
}

TEST(ColumnSelectionTest, BracketsAroundOtherThanAnIndexBelongToTheName) {
    EXPECT_EQ(describe("a=w [rad s^-1],b[x],c[1]d"), "a{<w [rad s^-1]><b[x]><c[1]d>}");
    EXPECT_EQ(parseColumnReference("gyro[0]").text, "gyro[0]");
}

TEST(ColumnSelectionTest, WrongTextsAreRefusedWithTheirPlace) {
    struct Case {
        const char* text;
        const char* cause;
    };
    const Case cases[] = {
        {"=ax", "character 1: the name of a pin is missing"},
        {"a=x;;b=y", "character 5: the name of a pin is missing"},
        {"acc", "character 4: '=' and columns are expected after the pin 'acc'"},
        {"ax,ay", "character 3: '=' and columns are expected after the pin 'ax'"},
        {"a=", "character 3: a column is missing"},
        {"a=;b=x", "character 3: a column is missing"},
        {"a=x,,y", "character 5: a column is missing"},
        {"a=x,", "character 5: a column is missing"},
        {"a=[0]", "character 3: a column is missing"},
        {"a=x;a=y", "character 5: pin 'a' occurs twice"},
        {"a=x=y", "character 4: unexpected '='; names with '=' must be quoted"},
        {"a=#0", "character 3: columns are counted from 1"},
        {"a=0", "character 3: columns are counted from 1"},
        {"a=#x",
         "character 3: '#' is followed by the column's position; names with '#' must be quoted"},
        {"a=#",
         "character 3: '#' is followed by the column's position; names with '#' must be quoted"},
        {"a=#99999999",
         "character 3: '#' is followed by the column's position; names with '#' must be quoted"},
        {"a=\"x", "character 3: the quote is not closed"},
        {"a=\"x\"y", "character 3: text after the closing quote"},
        {"\"a\"b=x", "character 1: text after the closing quote"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(messageOf<Poco::DataFormatException>([&] { (void)parseColumnSelection(c.text); }),
                  "Column selection '" + std::string(c.text) + "', " + c.cause);
}

TEST(ColumnSelectionTest, SingleColumnIsOneAndNoWholeList) {
    EXPECT_EQ(describe(parseColumnReference(" Time (s) ")), "Time (s)");
    EXPECT_EQ(describe(parseColumnReference("#2[1]")), "#2[1]");
    for (const char* text : {"", "a,b", "a;b", "a=b", "a[]", "#1[]"})
        EXPECT_THROW((void)parseColumnReference(text), Poco::DataFormatException) << text;
}

TEST(ColumnSelectionTest, RandomTextsAreReadOrRefused) {
    std::mt19937 random(3);
    constexpr std::string_view kAlphabet = "a=,;\"#[]1 ";
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (std::size_t i = random() % 12; i > 0; --i)
            text += kAlphabet[random() % kAlphabet.size()];
        try {
            for (const PinColumns& pin : parseColumnSelection(text)) {
                EXPECT_FALSE(pin.pin.empty()) << text;
                EXPECT_FALSE(pin.columns.empty()) << text;
            }
        } catch (const Poco::DataFormatException& exception) {
            EXPECT_TRUE(exception.message().starts_with("Column selection '" + text + "'"));
        }
    }
}

}  // namespace
}  // namespace Quoril::Core
