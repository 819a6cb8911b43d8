#include "host/filters/CsvTable.hpp"
#include "tests/host/filters/Support.hpp"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::DoubleEq;
using ::testing::ElementsAre;
using ::testing::NanSensitiveDoubleEq;
using TestKit::messageOf;
using TestKit::ScratchFile;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// All numbers of the first pin.
std::vector<double> numbersOf(const std::string& content, const std::string& columns,
                              const CsvFormat& format = {}) {
    const ScratchFile file(content);
    CsvTable table(file.path(), format, parseColumnSelection(columns), std::nullopt);
    std::vector<double> numbers;
    while (table.next())
        for (const double value : table.getValues(0))
            numbers.push_back(value);
    return numbers;
}

// What is told of a file when it is opened or read, without its path.
std::string complaintOf(const std::string& content, const std::string& columns,
                        const CsvFormat& format = {},
                        const std::optional<std::string>& time = std::nullopt) {
    const ScratchFile file(content);
    std::string message = messageOf<Poco::DataFormatException>([&] {
        std::optional<ColumnReference> reference;
        if (time) reference = parseColumnReference(*time);
        CsvTable table(file.path(), format, parseColumnSelection(columns), reference);
        while (table.next()) {
        }
    });
    const std::size_t at = message.find(file.path());
    EXPECT_NE(at, std::string::npos) << message;
    if (at != std::string::npos) message.replace(at, file.path().size(), "FILE");
    return message;
}

TEST(CsvTableTest, ColumnsAreFoundByNameAndSentInTheirOrder) {
    EXPECT_THAT(numbersOf("t,ax,ay\n1,2,3\n4,5,6\n", "a=ay,t"), ElementsAre(3, 1, 6, 4));
    EXPECT_THAT(numbersOf("\"a,b\" ,\"say \"\"x\"\"\"\n1,2\n", R"(a="say ""x""","a,b")"),
                ElementsAre(2, 1));
}

TEST(CsvTableTest, OneColumnMayBeTakenSeveralTimes) {
    EXPECT_THAT(numbersOf("t,x\n1,2\n", "a=x,#2,x,t"), ElementsAre(2, 2, 2, 1));
}

TEST(CsvTableTest, PinsHaveTheirOwnNumbers) {
    const ScratchFile file("t,ax,ay\n1,2,3\n");
    CsvTable table(file.path(), {}, parseColumnSelection("t=t;acc=ay,ax"), std::nullopt);
    ASSERT_EQ(table.getValues(1).size(), 2U);
    ASSERT_TRUE(table.next());
    EXPECT_THAT(table.getValues(0), ElementsAre(1));
    EXPECT_THAT(table.getValues(1), ElementsAre(3, 2));
}

TEST(CsvTableTest, HeaderIsFoundByItself) {
    EXPECT_THAT(numbersOf("t,x\n1,2\n", "a=#2"), ElementsAre(2));
    EXPECT_THAT(numbersOf("1,2\n3,4\n", "a=#2"), ElementsAre(2, 4));
    EXPECT_THAT(numbersOf("S,1\nS,2\n", "a=#2"), ElementsAre(1, 2));
    EXPECT_THAT(numbersOf(",x\n0,5\n", "a=x"), ElementsAre(5));
    EXPECT_THAT(numbersOf("S,\"[1, 2]\"\n", "a=#2[0]"), ElementsAre(1));
    EXPECT_THAT(numbersOf("nan,nan\n1,2\n", "a=#2"),
                ElementsAre(NanSensitiveDoubleEq(kNan), DoubleEq(2)));
    EXPECT_THAT(numbersOf(",\n1,2\n", "a=#2"),
                ElementsAre(NanSensitiveDoubleEq(kNan), DoubleEq(2)));
}

TEST(CsvTableTest, HeaderIsAsTheUserSays) {
    EXPECT_THAT(numbersOf("1,2\n3,4\n", R"(a="2")", {{}, CsvHeader::kYes}), ElementsAre(4));
    EXPECT_THAT(complaintOf("t,x\n1,2\n", "a=#2", {{}, CsvHeader::kNo}),
                "FILE, line 1, column 2: 'x' is not a number");
}

TEST(CsvTableTest, BlankAndMissingValuesAreNan) {
    const auto isNan = NanSensitiveDoubleEq(kNan);
    EXPECT_THAT(numbersOf("a,b,c\n1,,3\n ,\"\",nan\n", "p=a,b,c"),
                ElementsAre(DoubleEq(1), isNan, DoubleEq(3), isNan, isNan, isNan));
}

TEST(CsvTableTest, NumbersKeepEveryDigitThatADoubleHas) {
    EXPECT_THAT(numbersOf("9007199254740991,1018138549376479,-5.35E-05,+.5\n", "p=1,2,3,4"),
                ElementsAre(9007199254740991.0, 1018138549376479.0, -5.35e-05, 0.5));
    EXPECT_THAT(numbersOf("1737839630219472748\n", "p=1"), ElementsAre(1737839630219472748.0));
}

TEST(CsvTableTest, OtherColumnsMayHoldAnyText) {
    EXPECT_THAT(numbersOf("s,x,note\nS,1,\"a,b\"\n\"q\"\"\",2,5\" pipe\n", "a=x"),
                ElementsAre(1, 2));
}

TEST(CsvTableTest, OtherSeparatorsAreTaken) {
    EXPECT_THAT(numbersOf("a;b\n1;2\n", "p=b", {CsvSeparator::parse(";"), {}}), ElementsAre(2));
    EXPECT_THAT(numbersOf("a\tb\n1\t2\n", "p=b", {CsvSeparator::parse("tab"), {}}), ElementsAre(2));
    EXPECT_THAT(numbersOf(" a  b\n 1 \t2\n", "p=b", {CsvSeparator::parse("blanks"), {}}),
                ElementsAre(2));
}

TEST(CsvTableTest, ListsAreTakenByElementAndWhole) {
    const std::string content = "n,v\n1,\"[10, 20, 30]\"\n2,\"[11, , 31]\"\n3,\n";
    const auto isNan = NanSensitiveDoubleEq(kNan);
    EXPECT_THAT(numbersOf(content, "p=v[2],#2[0]"),
                ElementsAre(DoubleEq(30), DoubleEq(10), DoubleEq(31), DoubleEq(11), isNan, isNan));
    EXPECT_THAT(numbersOf(content, "p=n,v[]"),
                ElementsAre(DoubleEq(1), DoubleEq(10), DoubleEq(20), DoubleEq(30), DoubleEq(2),
                            DoubleEq(11), isNan, DoubleEq(31), DoubleEq(3), isNan, isNan, isNan));
}

TEST(CsvTableTest, HeaderMayHoldANameWithAnIndex) {
    EXPECT_THAT(numbersOf("gyro[0],gyro[1]\n1,2\n", "p=gyro[1],gyro[0]"), ElementsAre(2, 1));
}

TEST(CsvTableTest, TimeColumnStandsBesideThePins) {
    const ScratchFile file("ns,x\n1000,5\n2000,6\n");
    CsvTable table(file.path(), {}, parseColumnSelection("p=x"), parseColumnReference("ns"));
    ASSERT_TRUE(table.next());
    EXPECT_EQ(table.getTime(), 1000.0);
    EXPECT_THAT(table.getValues(0), ElementsAre(5));
    ASSERT_TRUE(table.next());
    EXPECT_EQ(table.getTime(), 2000.0);
}

TEST(CsvTableTest, BadFieldIsToldWithFileLineColumnAndText) {
    EXPECT_EQ(complaintOf("# m\nt,ax\n1,2\n\n3,1.2.3\n", "p=ax"),
              "FILE, line 5, column 2 ('ax'): '1.2.3' is not a number");
    EXPECT_EQ(complaintOf("1,2\r\n3,x\r\n", "p=#2"), "FILE, line 2, column 2: 'x' is not a number");
    EXPECT_EQ(complaintOf("1,2\n3\n", "p=#2"),
              "FILE, line 2, column 2: the line ends after column 1");
    EXPECT_EQ(complaintOf("1,1e999\n", "p=#2"), "FILE, line 1, column 2: '1e999' is not a number");
    EXPECT_EQ(complaintOf(std::string("1,2\n3,\0\n", 8), "p=#2"),
              "FILE, line 2, column 2: '\\x00' is not a number");
    EXPECT_EQ(complaintOf("1," + std::string(100, 'y') + "\n", "p=#2"),
              "FILE, line 1, column 2: '" + std::string(40, 'y') + "...' is not a number");
}

TEST(CsvTableTest, BadQuotesAreToldAlsoInOtherColumns) {
    EXPECT_EQ(complaintOf("1,2\n\"a,3\n", "p=#2"),
              "FILE, line 2, column 1: 'a,3' has no closing quote");
    EXPECT_EQ(complaintOf("1,2\n\"a\"b,3\n", "p=#2"),
              "FILE, line 2, column 1: 'a' has text after its closing quote");
    EXPECT_EQ(complaintOf("\"t,x\n1,2\n", "p=#2"),
              "FILE, line 1, column 1: 't,x' has no closing quote");
}

TEST(CsvTableTest, BadListsAreTold) {
    EXPECT_EQ(complaintOf("\"[1, 2]\"\n\"[1]\"\n", "p=#1[1]"),
              "FILE, line 2, column 1: '[1]' has 1 elements; 2 are expected");
    EXPECT_EQ(complaintOf("\"[1, 2]\"\n\"[1, 2, 3]\"\n", "p=#1[]"),
              "FILE, line 2, column 1: '[1, 2, 3]' has 3 elements; 2 are expected");
    EXPECT_EQ(complaintOf("\"[1, 2]\"\n\"[1]\"\n", "p=#1[]"),
              "FILE, line 2, column 1: '[1]' has 1 elements; 2 are expected");
    EXPECT_EQ(complaintOf("5\n", "p=#1[0]"), "FILE, line 1, column 1: '5' is not a list");
    EXPECT_EQ(complaintOf("5\n", "p=#1[]"), "FILE, line 1, column 1: '5' is not a list");
    EXPECT_EQ(complaintOf("\"[1, x]\"\n", "p=#1[1]"),
              "FILE, line 1, column 1: 'x' is not a number");
    EXPECT_EQ(
        complaintOf("\"[1, 2]\"\n", "p=#1"),
        "FILE, line 1, column 1: '[1, 2]' is a list; select an element ([0], [1], ...) or all "
        "of them ([])");
    EXPECT_EQ(complaintOf("1,\n", "p=#2[]"),
              "FILE, line 1, column 2: the list is blank in the first row, so that its length is "
              "not known; select its elements one by one ([0], [1], ...)");
}

TEST(CsvTableTest, TimeThatIsNoNumberIsTold) {
    EXPECT_EQ(complaintOf("t,x\n1,2\n,3\n", "p=x", {}, "t"),
              "FILE, line 3, column 1 ('t'): '' is no time");
    EXPECT_EQ(complaintOf("t,x\ninf,2\n", "p=x", {}, "t"),
              "FILE, line 2, column 1 ('t'): 'inf' is no time");
}

TEST(CsvTableTest, MissingColumnsAreToldWithThoseThatThereAre) {
    EXPECT_EQ(complaintOf("t,ax\n1,2\n", "p=ay"),
              "CSV file 'FILE' has no column 'ay'; its 2 columns are 't', 'ax'");
    EXPECT_EQ(complaintOf("t,ax\n1,2\n", "p=ax[0]"),
              "FILE, line 2, column 2 ('ax'): '2' is not a list");
    EXPECT_EQ(complaintOf("1,2\n", "p=ax"),
              "CSV file 'FILE' has no header, so that there is no column 'ax'; select columns by "
              "their position (#1 to #2)");
    EXPECT_EQ(complaintOf("1,2\n", "p=#3"),
              "CSV file 'FILE' has 2 columns, but column 3 is selected");
    EXPECT_EQ(complaintOf("t,x,x\n1,2,3\n", "p=x"),
              "CSV file 'FILE' has two columns 'x'; select one by its position (#2 or #3)");
    EXPECT_EQ(complaintOf("t,ax\n1,2\n", "p=ax", {}, "time"),
              "CSV file 'FILE' has no column 'time'; its 2 columns are 't', 'ax'");
}

TEST(CsvTableTest, LongHeadersAreNotToldWhole) {
    std::string header = "c1";
    for (int i = 2; i <= 51; ++i)
        header += ",c" + std::to_string(i);
    const std::string message = complaintOf(header + "\n1\n", "p=x");
    EXPECT_TRUE(message.ends_with("'c19', 'c20', ...")) << message;
}

TEST(CsvTableTest, FileWithoutRowsIsTold) {
    EXPECT_EQ(complaintOf("# nothing\n", "p=#1"), "CSV file 'FILE' holds no header and no rows");
    EXPECT_EQ(complaintOf("t,x\n# end\n", "p=x"), "CSV file 'FILE' holds a header but no rows");
}

TEST(CsvTableTest, ColumnsBehindTheSelectedOnesMayBeMissing) {
    EXPECT_THAT(numbersOf("a,b,c\n1,2,3\n4,5\n", "p=b"), ElementsAre(2, 5));
}

}  // namespace
}  // namespace Quoril::Core
