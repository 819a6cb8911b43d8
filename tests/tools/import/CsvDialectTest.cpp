#include "tests/sensorfile/TestSupport.hpp"
#include "tools/import/CsvDialect.hpp"
#include "tools/import/CsvReader.hpp"

namespace SensorFileTool {
namespace {

CsvDialect dialectOf(const std::string& text, const CsvOptions& options = {}) {
    const SensorFile::TemporaryFile file(text);
    return detectDialect(file.path(), "a.csv", options);
}

char separatorOf(const std::string& text) {
    return dialectOf(text).separator;
}

bool hasHeader(const std::string& text) {
    return dialectOf(text).hasHeader;
}

std::vector<std::string> listOf(const std::string& text) {
    std::vector<std::string_view> elements;
    if (!splitList(text, elements)) return {"no list"};
    return {elements.begin(), elements.end()};
}

TEST(CsvDialectTest, SeparatorIsWhatSplitsIntoNumbers) {
    EXPECT_EQ(separatorOf("a,b\n1,2\n3,4\n"), ',');
    EXPECT_EQ(separatorOf("a;b\n1;2\n3;4\n"), ';');
    EXPECT_EQ(separatorOf("a\tb\n1\t2\n3\t4\n"), '\t');
    EXPECT_EQ(separatorOf("a b\n1  2\n3 \t4\n"), kCsvBlanks);
    EXPECT_EQ(separatorOf("Time (s), Acc X (g)\n1, 2\n3, 4\n"), ',');
    EXPECT_EQ(separatorOf("Time (s)\tAcc X (g)\n1\t\n\t4\n"), '\t');
    EXPECT_EQ(separatorOf("2020-01-01 10:00:00,1.5,2\n2020-01-01 10:00:01,1.5,2\n"), ',');
    EXPECT_EQ(separatorOf("1,0.5,\"[1, 2, 3]\"\n2,0.5,\"[1; 2; 3]\"\n"), ',');
}

TEST(CsvDialectTest, CommaIsTakenWhereNothingSplits) {
    EXPECT_EQ(separatorOf("1\n2\n"), ',');
    EXPECT_EQ(separatorOf(""), ',');
}

TEST(CsvDialectTest, DecimalCommasBetweenSemicolonsDoNotSplit) {
    CsvOptions options;
    options.style.hasDecimalComma = true;
    EXPECT_EQ(dialectOf("1,5;2,5;3\n1,5;2,5;4\n", options).separator, ';');
    EXPECT_EQ(dialectOf("1,5\n2,5\n", options).separator, ';');
    // So that the user is told what is wrong, if the option was forgotten.
    EXPECT_EQ(separatorOf("1,5;2,5;3\n1,5;2,5;4\n"), ';');
}

TEST(CsvDialectTest, WhatTheUserSaysIsTaken) {
    CsvOptions options;
    options.separator = ';';
    options.hasHeader = true;
    const CsvDialect dialect = dialectOf("1,2\n3,4\n", options);
    EXPECT_EQ(dialect.separator, ';');
    EXPECT_TRUE(dialect.hasHeader);
    options.hasHeader = false;
    EXPECT_FALSE(dialectOf("a;b\n3;4\n", options).hasHeader);
}

TEST(CsvDialectTest, HeaderHasTextsWhereNumbersFollow) {
    EXPECT_TRUE(hasHeader("time,ax\n0,1\n"));
    EXPECT_TRUE(hasHeader("time,1,2\n0,1,2\n"));
    EXPECT_TRUE(hasHeader("state,time\nS,1\n"));
    EXPECT_TRUE(hasHeader("time,ax\n,\n"));
    EXPECT_TRUE(hasHeader("time,ax\n"));
    EXPECT_TRUE(hasHeader("# made by hand\n\ntime,ax\n0,1\n"));
}

TEST(CsvDialectTest, NumbersInTheFirstRowAreData) {
    EXPECT_FALSE(hasHeader("0,1\n2,3\n"));
    EXPECT_FALSE(hasHeader("S,1\nS,3\n"));
    EXPECT_FALSE(hasHeader("nan,inf\n2,3\n"));
    EXPECT_FALSE(hasHeader("0,\"[1, 2]\"\n2,\"[3, 4]\"\n"));
    EXPECT_FALSE(hasHeader("0\n"));
    EXPECT_FALSE(hasHeader(""));
}

TEST(CsvDialectTest, SampleIsBounded) {
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += "1,2\n";
    EXPECT_LE(dialectOf(text).sample.size(), 100U);
}

TEST(CsvDialectTest, ListsAreSplit) {
    using List = std::vector<std::string>;
    EXPECT_EQ(listOf("[1, 2, 3]"), (List{"1", "2", "3"}));
    EXPECT_EQ(listOf("[-1 2\t3]"), (List{"-1", "2", "3"}));
    EXPECT_EQ(listOf("[ 1;2 ]"), (List{"1", "2"}));
    EXPECT_EQ(listOf("[1,,2]"), (List{"1", "", "2"}));
    EXPECT_EQ(listOf("[1 , 2,]"), (List{"1", "2"}));
    EXPECT_EQ(listOf("[7]"), (List{"7"}));
    for (const char* text : {"", "[", "]", "[]", "[ ]", "1", "[1", "1]", "(1, 2)"})
        EXPECT_EQ(listOf(text), (List{"no list"})) << text;
}

}  // namespace
}  // namespace SensorFileTool
