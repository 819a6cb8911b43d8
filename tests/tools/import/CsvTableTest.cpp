#include "tests/sensorfile/TestSupport.hpp"
#include "tools/import/CsvMatrix.hpp"
#include "tools/import/CsvTable.hpp"

#include <Poco/Exception.h>

namespace SensorFileTool {
namespace {

using SensorFile::TemporaryFile;
using Cells = std::vector<std::string>;

class CsvTableTest : public testing::Test {
 protected:
    CsvTable open(const std::string& text) {
        file.setContent(text);
        return {file.path(), "a.csv", detectDialect(file.path(), "a.csv", {})};
    }
    Cells names(const std::string& text) {
        Cells all;
        const CsvTable table = open(text);
        for (const CsvColumn& column : table.columns())
            all.push_back(column.name);
        return all;
    }
    /// Of the row that is the first one but those before it.
    Cells cells(const std::string& text, int before = 0) {
        CsvTable table = open(text);
        for (int i = 0; i <= before; ++i)
            EXPECT_TRUE(table.next());
        if (table.defect()) return {table.describe(*table.defect())};
        return {table.cells().begin(), table.cells().end()};
    }

    TemporaryFile file;
};

TEST_F(CsvTableTest, ColumnsHaveTheNamesOfTheHeader) {
    EXPECT_EQ(names("Time (s), \"a,b\" ,x\n1,2,3\n"), (Cells{"Time (s)", "a,b", "x"}));
}

TEST_F(CsvTableTest, ColumnsWithoutNameHaveTheirPositions) {
    EXPECT_EQ(names("1,2,3\n"), (Cells{"COL1", "COL2", "COL3"}));
    EXPECT_EQ(names("a,,c\n1,2,3\n"), (Cells{"a", "COL2", "c"}));
}

TEST_F(CsvTableTest, ControlCharactersInNamesAreBlanks) {
    EXPECT_EQ(names("\"a\tb\",\"two\nlines\"\n1,2\n"), (Cells{"a b", "two lines"}));
}

TEST_F(CsvTableTest, ListsAreColumns) {
    const char* const text = "1,2,\"[3, 4]\"\n5,6,\"[7 8]\"\n";
    EXPECT_EQ(names(text), (Cells{"COL1", "COL2", "COL3_0", "COL3_1"}));
    EXPECT_EQ(cells(text), (Cells{"1", "2", "3", "4"}));
    EXPECT_EQ(cells(text, 1), (Cells{"5", "6", "7", "8"}));
    EXPECT_EQ(names("t,acc\n1,\"[3, 4]\"\n"), (Cells{"t", "acc0", "acc1"}));
}

TEST_F(CsvTableTest, BlankListIsBlankCells) {
    EXPECT_EQ(cells("1,\"[3, 4]\",9\n5,,9\n", 1), (Cells{"5", "", "", "9"}));
    EXPECT_EQ(cells("1,,9\n5,\"[3, 4]\",9\n"), (Cells{"1", "", "", "9"}));
}

TEST_F(CsvTableTest, ListOfAnotherLengthIsADefect) {
    const std::string first = "1,\"[3, 4]\"\n";
    EXPECT_EQ(cells(first + "5,\"[1, 2, 3]\"\n", 1),
              (Cells{"column 2 (COL2_0): '[1, 2, 3]' is no list of 2"}));
    EXPECT_EQ(cells(first + "5,7\n", 1), (Cells{"column 2 (COL2_0): '7' is no list of 2"}));
}

TEST_F(CsvTableTest, OtherCountsOfFieldsAreDefects) {
    EXPECT_EQ(cells("a,b\n1,2\n1\n", 1), (Cells{"1 field(s) instead of 2"}));
    EXPECT_EQ(cells("a,b\n1,2\n1,2,3\n", 1), (Cells{"3 field(s) instead of 2"}));
    EXPECT_EQ(cells("a,b\n1,2\n1,2,,\n", 1), (Cells{"4 field(s) instead of 2"}));
}

TEST_F(CsvTableTest, SeparatorBehindTheLastFieldIsAllowed) {
    EXPECT_EQ(cells("a,b\n1,2,\n3,4\n"), (Cells{"1", "2"}));
    EXPECT_EQ(cells("a,b\n1,2,\n3,4\n", 1), (Cells{"3", "4"}));
}

TEST_F(CsvTableTest, BadQuotesAreADefectOfTheirRowAlone) {
    const char* const text = "a,b\n1,\"2\"x\n3,4\n";
    EXPECT_EQ(cells(text), (Cells{"field 2: text stands behind a closing quote"}));
    EXPECT_EQ(cells(text, 1), (Cells{"3", "4"}));
}

TEST_F(CsvTableTest, DefectsNameFileLineAndColumn) {
    CsvTable table = open("a,b\n\n1,2\n");
    ASSERT_TRUE(table.next());
    EXPECT_THROW_MESSAGE(table.fail({1, "'2' is odd"}), Poco::DataFormatException,
                         "a.csv: line 3: column 2 (b): '2' is odd");
}

TEST_F(CsvTableTest, FilesWithoutRowsAndNamesAreRefused) {
    for (const char* text : {"", "\n\n", "# nothing\n"})
        EXPECT_THROW_MESSAGE(open(text), Poco::DataFormatException,
                             "a.csv: no rows and no names are in the file");
}

TEST_F(CsvTableTest, TooManyElementsAreRefused) {
    std::string list = "\"[1";
    for (int i = 1; i < 65536; ++i)
        list += ",1";
    EXPECT_THROW_MESSAGE(open(list + "]\"\n"), Poco::DataFormatException,
                         "a.csv: more than 65535 columns");
}

TEST(QuoteTextTest, LongTextsAreCutAndControlsHidden) {
    EXPECT_EQ(quoteText("a\tb\x1b[31m"), "'a\\x09b\\x1b[31m'");
    std::string umlauts = "x";
    while (umlauts.size() < 41)
        umlauts += "\u00e4";
    EXPECT_EQ(quoteText(umlauts), "'" + umlauts.substr(0, 39) + "...'");
    EXPECT_EQ(quoteText(std::string(40, 'x')), "'" + std::string(40, 'x') + "'");
    EXPECT_EQ(quoteText(std::string(41, 'x')), "'" + std::string(40, 'x') + "...'");
}

TEST(CsvMatrixTest, RowsAreLines) {
    const TemporaryFile file("# gain\n1, 2.5, -3\n4 , 5, 6e1\n");
    Eigen::MatrixXd expected(2, 3);
    expected << 1, 2.5, -3, 4, 5, 60;
    EXPECT_EQ(readCsvMatrix(file.path()), expected);
    file.setContent("7\n");
    EXPECT_EQ(readCsvMatrix(file.path()), Eigen::MatrixXd::Constant(1, 1, 7));
    file.setContent("1 2\n3 4\n");
    EXPECT_EQ(readCsvMatrix(file.path())(1, 0), 3);
}

TEST(CsvMatrixTest, OtherFilesAreRefused) {
    const TemporaryFile file("1,2\n3,x\n");
    EXPECT_THROW_MESSAGE((void)readCsvMatrix(file.path()), Poco::DataFormatException,
                         file.path() + ": line 2: column 2 (COL2): 'x' is no number");
    for (const char* text : {"", "1,2\n3\n", "1,\n", "a,b\n1,2\n"}) {
        file.setContent(text);
        EXPECT_THROW((void)readCsvMatrix(file.path()), Poco::DataFormatException) << text;
    }
}

TEST(CsvMatrixTest, AtMost255RowsAndColumns) {
    std::string row = "1";
    for (int i = 1; i < 255; ++i)
        row += ",1";
    std::string rows;
    for (int i = 0; i < 255; ++i)
        rows += "1\n";
    const TemporaryFile file(row);
    EXPECT_EQ(readCsvMatrix(file.path()).cols(), 255);
    file.setContent(row + ",1");
    EXPECT_THROW((void)readCsvMatrix(file.path()), Poco::DataFormatException);
    file.setContent(rows);
    EXPECT_EQ(readCsvMatrix(file.path()).rows(), 255);
    file.setContent(rows + "1\n");
    EXPECT_THROW_MESSAGE((void)readCsvMatrix(file.path()), Poco::DataFormatException,
                         file.path() + ": line 256: a calibration record has at most 255 rows");
}

}  // namespace
}  // namespace SensorFileTool
