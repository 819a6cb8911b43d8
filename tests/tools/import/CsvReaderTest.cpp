#include "tests/sensorfile/TestSupport.hpp"
#include "tests/tools/import/PlainCsv.hpp"
#include "tools/import/CsvReader.hpp"

#include <Poco/Exception.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {
namespace {

using SensorFile::TemporaryFile;
using Fields = std::vector<std::string>;

std::vector<PlainRecord> recordsOf(const std::string& text, char separator = ',') {
    const TemporaryFile file(text);
    CsvReader reader(file.path(), "a.csv", separator);
    std::vector<PlainRecord> records;
    while (reader.next()) {
        PlainRecord& record = records.emplace_back();
        record.line = reader.line();
        record.isBad = reader.problem().has_value();
        if (!record.isBad) record.fields.assign(reader.fields().begin(), reader.fields().end());
    }
    return records;
}

std::vector<Fields> fieldsOf(const std::string& text, char separator = ',') {
    std::vector<Fields> all;
    for (const PlainRecord& record : recordsOf(text, separator))
        all.push_back(record.fields);
    return all;
}

const std::vector<Fields> kTwoByTwo{{"1", "2"}, {"3", "4"}};

TEST(CsvReaderTest, LinesEndWithLfOrCrLfAndTheLastNeedsNoEnd) {
    for (const char* text :
         {"1,2\n3,4\n", "1,2\n3,4", "1,2\r\n3,4\r\n", "1,2\r\n3,4", "1,2\n3,4\r"})
        EXPECT_EQ(fieldsOf(text), kTwoByTwo) << text;
}

TEST(CsvReaderTest, AnySeparatorSplits) {
    EXPECT_EQ(fieldsOf("1;2\n3;4\n", ';'), kTwoByTwo);
    EXPECT_EQ(fieldsOf("1\t2\n3\t4\n", '\t'), kTwoByTwo);
    EXPECT_EQ(fieldsOf("1|2\n3|4\n", '|'), kTwoByTwo);
    EXPECT_EQ(fieldsOf(" 1   2\n3\t \t4  \n", kCsvBlanks), kTwoByTwo);
}

TEST(CsvReaderTest, SeparatorBesideAMinusSplitsOnce) {
    EXPECT_EQ(fieldsOf("1,-2,-3,-4,-5,-6,-7\n"),
              (std::vector<Fields>{{"1", "-2", "-3", "-4", "-5", "-6", "-7"}}));
}

TEST(CsvReaderTest, BlanksAroundFieldsDoNotBelongToThem) {
    EXPECT_EQ(fieldsOf("  1 ,\t2\t\n3,4   \n"), kTwoByTwo);
    EXPECT_EQ(fieldsOf(" 1 \t 2\n3\t4 \n", '\t'), kTwoByTwo);
    EXPECT_EQ(fieldsOf("1, \"2\" \n\" 3 \",4\n"), kTwoByTwo);
}

TEST(CsvReaderTest, BlankFieldsAreThere) {
    EXPECT_EQ(fieldsOf(",1,,\n"), (std::vector<Fields>{{"", "1", "", ""}}));
    EXPECT_EQ(fieldsOf("\t1\t\n", '\t'), (std::vector<Fields>{{"", "1", ""}}));
    EXPECT_EQ(fieldsOf("\"\",1\n"), (std::vector<Fields>{{"", "1"}}));
}

TEST(CsvReaderTest, BlankLinesAndMarkerLinesArePassedOver) {
    const TemporaryFile file("\n#x\n  \r\n1,2\n\t\n  # it's 5\" long\n3,4\n\n#");
    CsvReader reader(file.path(), "a.csv", ',');
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.line(), 4U);
    EXPECT_EQ(reader.getCommentCount(), 1U);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.line(), 7U);
    EXPECT_FALSE(reader.next());
    EXPECT_EQ(reader.getCommentCount(), 3U);
}

TEST(CsvReaderTest, MarkWithinALineBelongsToItsField) {
    EXPECT_EQ(fieldsOf("1,#2\n\"#3\",4\n"), (std::vector<Fields>{{"1", "#2"}, {"#3", "4"}}));
}

TEST(CsvReaderTest, QuotedFieldsHoldSeparatorsQuotesAndLineEnds) {
    EXPECT_EQ(fieldsOf("\"a,b\",\"say \"\"x\"\"\",\"two\nlines\"\n\"c\r\nd\",2,3\n"),
              (std::vector<Fields>{{"a,b", "say \"x\"", "two\nlines"}, {"c\r\nd", "2", "3"}}));
}

TEST(CsvReaderTest, LinesAreCountedThroughQuotedLineEnds) {
    const auto records = recordsOf("\"a\n\nb\",1\n2,3\n");
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].line, 1U);
    EXPECT_EQ(records[1].line, 4U);
}

TEST(CsvReaderTest, QuoteWithinAFieldIsACharacter) {
    EXPECT_EQ(fieldsOf("5\",6\"\"\n1,2\n"), (std::vector<Fields>{{"5\"", "6\"\""}, {"1", "2"}}));
}

TEST(CsvReaderTest, TextBehindAClosingQuoteSpoilsTheRecordAlone) {
    const TemporaryFile file("1,\"2\"x,3\n4,5,6\n");
    CsvReader reader(file.path(), "a.csv", ',');
    ASSERT_TRUE(reader.next());
    ASSERT_TRUE(reader.problem());
    EXPECT_EQ(reader.problem()->field, 1U);
    EXPECT_STREQ(reader.problem()->text, "text stands behind a closing quote");
    ASSERT_TRUE(reader.next());
    EXPECT_FALSE(reader.problem());
    EXPECT_EQ(reader.fields().size(), 3U);
}

TEST(CsvReaderTest, QuoteThatIsNotClosedIsAnError) {
    EXPECT_THROW_MESSAGE(
        recordsOf("1,2\n3,\"4\n5,6\n"), Poco::DataFormatException,
        "a.csv: line 2: the quote of field 2 is not closed before the end of the file");
    EXPECT_THROW_MESSAGE(
        recordsOf("\""), Poco::DataFormatException,
        "a.csv: line 1: the quote of field 1 is not closed before the end of the file");
}

TEST(CsvReaderTest, ByteOrderMarkIsSkipped) {
    EXPECT_EQ(fieldsOf("\xef\xbb\xbf"
                       "1,2\n3,4\n"),
              kTwoByTwo);
    EXPECT_EQ(fieldsOf("\xef\xbb\xbf").size(), 0U);
    EXPECT_EQ(fieldsOf("\xef\xbb"), (std::vector<Fields>{{"\xef\xbb"}}));
}

TEST(CsvReaderTest, Utf16IsRefused) {
    const char* const message = "a.csv: UTF-16 text; only UTF-8 can be read";
    EXPECT_THROW_MESSAGE(recordsOf("\xff\xfe"), Poco::DataFormatException, message);
    EXPECT_THROW_MESSAGE(recordsOf(std::string("\xfe\xff\0001", 4)), Poco::DataFormatException,
                         message);
}

TEST(CsvReaderTest, EmptyFileHasNoRecords) {
    for (const char* text : {"", "\n", "\r\n", "  ", "#", "\n\n#x\n"})
        EXPECT_TRUE(recordsOf(text).empty()) << text;
}

TEST(CsvReaderTest, MissingFileIsTold) {
    EXPECT_THROW(CsvReader("/nowhere/a.csv", "a.csv", ','), Poco::FileException);
}

TEST(CsvReaderTest, LongestRecordIsReadAndALongerOneRefused) {
    const std::string longest(CsvReader::kMaxRecord, '1');
    EXPECT_EQ(fieldsOf("1\n" + longest + "\r\n2\n").at(1).at(0).size(), CsvReader::kMaxRecord);
    for (const std::string& end : {std::string("1\n"), std::string("1"), std::string(1 << 20, '1')})
        EXPECT_THROW_MESSAGE(
            recordsOf("1\n" + longest + end), Poco::DataFormatException,
            "a.csv: line 2: longer than 4194304 bytes, or a quote in it is not closed");
    EXPECT_THROW_MESSAGE(
        recordsOf("\"" + std::string(CsvReader::kMaxRecord, '\n') + "\"\n"),
        Poco::DataFormatException,
        "a.csv: line 1: longer than 4194304 bytes, or a quote in it is not closed");
}

TEST(CsvReaderTest, AsManyFieldsAsASensorFileHasColumns) {
    std::string text = "1";
    for (std::size_t i = 1; i < CsvReader::kMaxFields; ++i)
        text += ",1";
    EXPECT_EQ(fieldsOf(text).at(0).size(), CsvReader::kMaxFields);
    EXPECT_THROW_MESSAGE(recordsOf(text + ",1"), Poco::DataFormatException,
                         "a.csv: line 1: more than 65535 fields");
}

TEST(CsvReaderTest, RecordsAcrossBlocksStayWhole) {
    // Lengths are such that line ends and quotes come to lie at all places of a block's end.
    std::string text;
    std::vector<Fields> expected;
    for (std::size_t i = 0; text.size() < 3000000; ++i) {
        const std::string number = std::to_string(i * i);
        const std::string filler(i * 7919 % 211, 'x');
        text += number + ",\"" + filler + "\"\"\n\"" + (i % 2 == 0 ? "\r\n" : "\n");
        expected.push_back({number, filler + "\"\n"});
    }
    EXPECT_TRUE(fieldsOf(text) == expected);
}

RC_GTEST_PROP(CsvReaderTest, AnyTextIsReadAsByAPlainReader, ()) {
    const char separator = *rc::gen::elementOf(std::string(",;\t "));
    const auto letters = *rc::gen::container<std::string>(
        rc::gen::elementOf(std::string("1a-,,,;;;\t\t   \"\"\"\"\n\n\n\r#")));
    const std::string text = (*rc::gen::arbitrary<bool>() ? "" : "\xef\xbb\xbf") + letters;
    const PlainCsv plain(text, separator);
    if (plain.isQuoteOpen) {
        RC_ASSERT_THROWS_AS(recordsOf(text, separator), Poco::DataFormatException);
        return;
    }
    RC_ASSERT(recordsOf(text, separator) == plain.records);
}

RC_GTEST_PROP(CsvReaderTest, AnyFieldsThatWereQuotedAreReadBack, ()) {
    const auto table =
        *rc::gen::container<std::vector<Fields>>(rc::gen::nonEmpty(rc::gen::container<Fields>(
            rc::gen::container<std::string>(rc::gen::elementOf(std::string("1a,;\"\n\r#"))))));
    std::string text;
    for (const Fields& fields : table) {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            text += i > 0 ? ",\"" : "\"";
            for (const char letter : fields[i])
                text += letter == '"' ? std::string("\"\"") : std::string(1, letter);
            text += '"';
        }
        text += "\r\n";
    }
    RC_ASSERT(fieldsOf(text) == table);
}

}  // namespace
}  // namespace SensorFileTool
