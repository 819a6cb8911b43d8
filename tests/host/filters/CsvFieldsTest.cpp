#include "host/filters/CsvFields.hpp"
#include "tests/host/filters/Support.hpp"

#include <random>

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;
using Problem = CsvFields::Problem;

std::vector<std::string> fieldsOf(std::string_view line, const std::string& separator = ",") {
    CsvFields fields(line, CsvSeparator::parse(separator));
    std::vector<std::string> texts;
    while (fields.next()) {
        EXPECT_EQ(fields.getProblem(), Problem::kNone) << line;
        texts.push_back(fields.getUnquotedText());
    }
    EXPECT_FALSE(fields.next());
    return texts;
}

TEST(CsvFieldsTest, EverySeparatorEndsAField) {
    EXPECT_THAT(fieldsOf("1,2,3"), ElementsAre("1", "2", "3"));
    EXPECT_THAT(fieldsOf(",,"), ElementsAre("", "", ""));
    EXPECT_THAT(fieldsOf("1,"), ElementsAre("1", ""));
    EXPECT_THAT(fieldsOf(""), ElementsAre(""));
    EXPECT_THAT(fieldsOf("1;2,5", ";"), ElementsAre("1", "2,5"));
}

TEST(CsvFieldsTest, BlanksAroundFieldsAreDropped) {
    EXPECT_THAT(fieldsOf(" 1 ,\ta b\t, "), ElementsAre("1", "a b", ""));
}

TEST(CsvFieldsTest, TabsSeparateWithEmptyFieldsBetween) {
    EXPECT_THAT(fieldsOf(" 1\t\t 3 ", "tab"), ElementsAre("1", "", "3"));
}

TEST(CsvFieldsTest, RunsOfBlanksSeparateWithoutEmptyFields) {
    EXPECT_THAT(fieldsOf("  1 \t 2  3  ", "blanks"), ElementsAre("1", "2", "3"));
    EXPECT_THAT(fieldsOf("\"a b\" c \"d\"", "blanks"), ElementsAre("a b", "c", "d"));
    EXPECT_THAT(fieldsOf("", "blanks"), ElementsAre());
}

TEST(CsvFieldsTest, QuotedFieldsKeepSeparatorsBlanksAndQuotes) {
    EXPECT_THAT(fieldsOf(R"( "a,b" ," c ","")"), ElementsAre("a,b", " c ", ""));
    EXPECT_THAT(fieldsOf(R"("say ""x"", ""y""","""",2)"),
                ElementsAre(R"(say "x", "y")", R"(")", "2"));
    EXPECT_THAT(fieldsOf(R"(1,"[-1366, -471, 8203]")"), ElementsAre("1", "[-1366, -471, 8203]"));
}

TEST(CsvFieldsTest, QuoteWithinAPlainFieldIsAnOrdinaryCharacter) {
    EXPECT_THAT(fieldsOf(R"(5" pipe,x"")"), ElementsAre(R"(5" pipe)", R"(x"")"));
}

TEST(CsvFieldsTest, OpenQuoteIsAProblemAndEndsTheLine) {
    for (const char* line : {R"("a,b)", R"(")", R"("a"")", R"("""")"}) {
        CsvFields fields(line, {});
        ASSERT_TRUE(fields.next());
        const bool isClosed = std::string(line) == R"("""")";
        EXPECT_EQ(fields.getProblem(), isClosed ? Problem::kNone : Problem::kQuoteNotClosed)
            << line;
        EXPECT_FALSE(fields.next()) << line;
    }
}

TEST(CsvFieldsTest, TextAfterAClosingQuoteIsAProblemAndEndsTheLine) {
    for (const char* separator : {",", "blanks"}) {
        CsvFields fields(R"("a"b,c)", CsvSeparator::parse(separator));
        ASSERT_TRUE(fields.next());
        EXPECT_EQ(fields.getProblem(), Problem::kTextAfterQuote);
        EXPECT_FALSE(fields.next());
    }
}

TEST(CsvFieldsTest, RandomFieldsAreFoundAgain) {
    std::mt19937 random(2);
    constexpr std::string_view kAlphabet = "ab1 ,;\"\t#";
    for (int round = 0; round < 5000; ++round) {
        std::vector<std::string> expected(1 + random() % 6);
        std::string line;
        for (std::string& field : expected) {
            std::string quoted;
            for (std::size_t i = random() % 8; i > 0; --i) {
                field += kAlphabet[random() % kAlphabet.size()];
                quoted += field.back();
                if (field.back() == '"') quoted += '"';
            }
            if (&field != expected.data()) line += ',';
            line += '"' + quoted + '"';
        }
        EXPECT_EQ(fieldsOf(line), expected) << line;
    }
}

}  // namespace
}  // namespace Quoril::Core
