#include "sensorfile/ColumnType.hpp"
#include "sensorfile/SensorFileReader.hpp"
#include "sensorfile/SensorFileWriter.hpp"
#include "tests/sensorfile/TestSupport.hpp"
#include "tools/check/DefectList.hpp"
#include "tools/check/SectionScan.hpp"
#include "tools/check/TextRowScanner.hpp"

#include <bit>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {
namespace {

using Form = TextRow::Form;
using State = TextField::State;
using SensorFile::configOfTypes;
using SensorFile::kAllTypeCodes;

class TextRowScannerTest : public testing::Test {
 protected:
    /// Rows as they stand in a file of columns of the given types.
    void open(const std::vector<int>& typeCodes, const std::string& samples) {
        head = SensorFile::openingOf(configOfTypes(typeCodes), /*binary=*/false);
        file.setContent(head + samples);
        reopen();
    }
    void reopen() {
        DefectList defects(10);
        map = SectionScan(file.path(), /*binary=*/false, defects).scan();
        EXPECT_EQ(defects.count(Severity::kError), 0U);
        scanner = std::make_unique<TextRowScanner>(file.path(), map);
    }
    const TextRow& next() {
        EXPECT_TRUE(scanner->next());
        return scanner->row();
    }
    std::vector<Form> forms() {
        std::vector<Form> found;
        while (scanner->next())
            found.push_back(scanner->row().form);
        return found;
    }

    SensorFile::TemporaryFile file;
    std::string head;
    SectionMap map;
    std::unique_ptr<TextRowScanner> scanner;
};

TEST_F(TextRowScannerTest, WholeRowHasValuesAndOffsets) {
    open({SensorFile::kInt16, SensorFile::kDouble}, "-12\t0.005\t\n7\t-1e3\t\n");
    const TextRow& row = next();
    EXPECT_TRUE(row.isUsable());
    EXPECT_EQ(row.row, 0);
    EXPECT_EQ(row.fields[0].value, -12.0);
    EXPECT_EQ(row.fields[1].value, 0.005);
    EXPECT_EQ(row.offsetOf(row.fields[0]), static_cast<std::int64_t>(head.size()));
    EXPECT_EQ(row.offsetOf(row.fields[1]), static_cast<std::int64_t>(head.size()) + 4);
    EXPECT_EQ(row.textOf(row.fields[1]), "0.005");
    EXPECT_EQ(next().fields[1].value, -1000.0);
    EXPECT_EQ(scanner->row().row, 1);
    EXPECT_FALSE(scanner->next());
    EXPECT_EQ(scanner->getRowCount(), 2);
}

TEST_F(TextRowScannerTest, LinesAreToldApart) {
    using namespace std::string_literals;
    open({SensorFile::kInt16, SensorFile::kInt16},
         "1\t2\t\n"s + "\n" + " \r\n" + "1\t\n" + "1\n" + "1\t2\t3\t\n" + "1\t2\t3\n" + "1\t2\n" +
             "1\t2\t\r\n" + "1\t2\t \n" + "\0\0\0"s + "1\t2\t\n" + "1\t");
    EXPECT_EQ(forms(),
              (std::vector{Form::kWhole, Form::kEmpty, Form::kEmpty, Form::kTooFew, Form::kTooFew,
                           Form::kTooMany, Form::kTooMany, Form::kWhole, Form::kWhole, Form::kWhole,
                           Form::kNuls, Form::kWhole, Form::kCut}));
}

TEST_F(TextRowScannerTest, CountsFields) {
    open({SensorFile::kInt16, SensorFile::kInt16}, "1\t\n1\n\t\t\t\n1\t2\t3\n1\t2\t3\t4\t\n");
    for (const std::size_t count : {1U, 1U, 3U, 3U, 4U})
        EXPECT_EQ(next().fieldCount, count);
}

TEST_F(TextRowScannerTest, OddEndsOfRowsAreTold) {
    open({SensorFile::kInt16}, "1\n2\t\r\n3\t \n4\r\n5\t");
    EXPECT_TRUE(next().isTabMissing);
    EXPECT_TRUE(next().isCrlf);
    EXPECT_TRUE(next().isBlankBehind);
    EXPECT_TRUE(next().isCrlf && scanner->row().isTabMissing);
    EXPECT_TRUE(next().isUsable());
    EXPECT_FALSE(scanner->row().line.hasEnd());
}

TEST_F(TextRowScannerTest, NumbersAreWholeWithTheirTabOnly) {
    open({SensorFile::kInt16, SensorFile::kDouble}, "1\t12.3");
    EXPECT_EQ(next().form, Form::kCut);
    EXPECT_EQ(scanner->row().fieldCount, 1U);
}

TEST_F(TextRowScannerTest, RowsBehindNulBytesAreNotTrusted) {
    open({SensorFile::kInt16}, std::string(5, '\0') + "1\t\n2\t\n");
    EXPECT_EQ(next().form, Form::kNuls);
    EXPECT_FALSE(next().isUsable());
    EXPECT_TRUE(next().isUsable());
    EXPECT_EQ(scanner->row().row, 1);
}

TEST_F(TextRowScannerTest, CharactersMayBeAnyByte) {
    for (int byte = 0; byte < 256; ++byte) {
        const auto character = static_cast<char>(byte);
        for (const bool isFirst : {true, false}) {
            const std::string one = std::string(1, character) + '\t';
            const std::string row = isFirst ? one + "5\t\n" : "5\t" + one + '\n';
            open(isFirst ? std::vector<int>{SensorFile::kUChar, SensorFile::kInt16}
                         : std::vector<int>{SensorFile::kInt16, SensorFile::kUChar},
                 row + row);
            for (int i = 0; i < 2; ++i) {
                const TextRow& found = next();
                ASSERT_EQ(found.form, Form::kWhole) << byte << isFirst;
                const bool isBlank = byte == ' ' || (byte >= '\t' && byte <= '\r');
                EXPECT_EQ(found.fields[isFirst ? 0 : 1].value, byte);
                EXPECT_EQ(found.fields[isFirst ? 0 : 1].state,
                          isBlank ? State::kBlankCharacter : State::kGood);
                EXPECT_EQ(found.isUsable(), !isBlank);
            }
            EXPECT_FALSE(scanner->next());
        }
    }
}

TEST_F(TextRowScannerTest, BadFieldsDoNotHideTheNextLine) {
    open({SensorFile::kInt16, SensorFile::kUChar}, "1\tAB\t\n2\t\t\n3\tA\t\n4\n5\tB\t\n");
    EXPECT_EQ(next().badField, 1U);
    EXPECT_EQ(next().badField, 1U);
    EXPECT_TRUE(next().isUsable());
    EXPECT_EQ(next().form, Form::kTooFew);
    EXPECT_TRUE(next().isUsable());
}

/// What is read of a value of a column's type.
State stateOf(int typeCode, const std::string& text) {
    TextField field;
    parseField(typeCode, text, field);
    return field.state;
}

TEST(TextFieldTest, NumbersOfEachType) {
    struct Case {
        int typeCode;
        std::vector<std::string> good;
        std::vector<std::string> outOfRange;
        std::vector<std::string> bad;
    };
    const Case cases[] = {
        {SensorFile::kUInt8, {"0", "255", "+7"}, {"256", "4294967295", "-1"}, {"4294967296", "x"}},
        {SensorFile::kInt8, {"-128", "127"}, {"128", "-129"}, {"3000000000", "1.5"}},
        {SensorFile::kUInt16, {"65535"}, {"-1", "-65535"}, {"65536", "-65536", ""}},
        {SensorFile::kInt16, {"-32768", "32767"}, {}, {"32768", "-32769", "--1", "+-1"}},
        {SensorFile::kUInt32, {"4294967295"}, {"-1"}, {"4294967296", "1e3"}},
        {SensorFile::kInt32, {"-2147483648"}, {}, {"2147483648", "0x1"}},
        {SensorFile::kUInt64, {"18446744073709551615"}, {"-1"}, {"18446744073709551616"}},
        {SensorFile::kInt64, {"-9223372036854775808"}, {}, {"9223372036854775808"}},
        {SensorFile::kFloat, {"1.5", ".5", "5.", "1e30", "nan", "-inf"}, {}, {"1e39", "1,5", "e5"}},
        {SensorFile::kDouble, {"-0", "+1e-300", "inf"}, {}, {"1e309", "infinity", "1.2.3"}},
        {SensorFile::kBool, {"0", "1"}, {}, {"2", "true", "-0"}},
    };
    for (const Case& one : cases) {
        for (const std::string& text : one.good)
            EXPECT_EQ(stateOf(one.typeCode, text), State::kGood) << one.typeCode << text;
        for (const std::string& text : one.outOfRange)
            EXPECT_EQ(stateOf(one.typeCode, text), State::kOutOfRange) << one.typeCode << text;
        for (const std::string& text : one.bad)
            EXPECT_EQ(stateOf(one.typeCode, text), State::kBad) << one.typeCode << text;
    }
}

/// Values that a writer takes for any column.
std::vector<std::vector<double>> randomRows(const std::vector<int>& typeCodes) {
    const auto count = *rc::gen::inRange<std::size_t>(0, 20);
    std::vector<std::vector<double>> rows(count, std::vector<double>(typeCodes.size()));
    for (auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            row[i] = *rc::gen::inRange(33, 100);
            const bool isReal =
                typeCodes[i] == SensorFile::kFloat || typeCodes[i] == SensorFile::kDouble;
            if (isReal) row[i] = *rc::gen::inRange(-100000, 100000) / 1024.0;
        }
    }
    return rows;
}

RC_GTEST_FIXTURE_PROP(TextRowScannerTest, RowsOfAWriterAreThoseOfAReader, ()) {
    const auto typeCodes =
        *rc::gen::nonEmpty(rc::gen::container<std::vector<int>>(rc::gen::elementOf(kAllTypeCodes)));
    const auto rows = randomRows(typeCodes);
    SensorFile::SensorFileWriter writer;
    writer.open(file.path(), configOfTypes(typeCodes), /*binary=*/false, /*writeHeaders=*/true);
    for (const auto& row : rows)
        writer.writeRow(row);
    writer.close();

    SensorFile::SensorFileReader reader;
    reader.open(file.path(), /*binary=*/false);
    reopen();
    std::vector<double> values(typeCodes.size());
    std::vector<std::uint64_t> bits(typeCodes.size());
    while (reader.readRow(values, bits)) {
        RC_ASSERT(scanner->next());
        RC_ASSERT(scanner->row().isUsable());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const TextField& field = scanner->row().fields[i];
            RC_ASSERT(std::bit_cast<std::uint64_t>(field.value) ==
                      std::bit_cast<std::uint64_t>(values[i]));
            if (typeCodes[i] == SensorFile::kUInt64 || typeCodes[i] == SensorFile::kInt64)
                RC_ASSERT(field.bits == bits[i]);
        }
    }
    RC_ASSERT(!scanner->next());
    RC_ASSERT(scanner->getRowCount() == static_cast<std::int64_t>(rows.size()));
}

}  // namespace
}  // namespace SensorFileTool
