#include "sensorfile/ColumnType.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/import/ImportColumns.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace SensorFileTool {
namespace {

using testing::HasSubstr;

/// "t", "a=b" and a list "acc" of two.
std::vector<CsvColumn> someColumns() {
    return {{"t", "t", 0, std::nullopt},
            {"a=b", "a=b", 1, std::nullopt},
            {"acc0", "acc", 2, 0},
            {"acc1", "acc", 2, 1}};
}

/// "CELL:NAME" or "CELL:NAME:TYPE" of each.
std::string choose(const std::string& choice, const std::string& renaming = "",
                   const std::vector<CsvColumn>& columns = someColumns()) {
    std::string text;
    for (const ImportColumn& column : chooseImportColumns(columns, choice, renaming)) {
        text += (text.empty() ? "" : " ") + std::to_string(column.cell) + ":" + column.name;
        if (column.typeCode) text += ":" + std::to_string(*column.typeCode);
    }
    return text;
}

std::string refusal(const std::string& choice, const std::string& renaming = "") {
    try {
        (void)choose(choice, renaming);
    } catch (const UsageException& error) {
        return error.message();
    }
    return "";
}

TEST(ImportColumnsTest, AllAreTakenUnlessSome) {
    EXPECT_EQ(choose(""), "0:t 1:a=b 2:acc0 3:acc1");
}

TEST(ImportColumnsTest, SomeAreTakenInTheOrderAskedForWithTheirTypes) {
    EXPECT_EQ(choose("acc1,t=DOUBLE"), "3:acc1 0:t:9");
    EXPECT_EQ(choose("t=f"), "0:t:8");
}

TEST(ImportColumnsTest, AListIsAllItsElements) {
    EXPECT_EQ(choose("acc=INT16"), "2:acc0:14 3:acc1:14");
    EXPECT_EQ(choose("acc0=INT16"), "2:acc0:14");
}

TEST(ImportColumnsTest, PositionsAreThoseOfFields) {
    EXPECT_EQ(choose("3=INT16,1"), "2:acc0:14 3:acc1:14 0:t");
}

TEST(ImportColumnsTest, NamesComeBeforePositions) {
    EXPECT_EQ(choose("1", "", {{"2", "2", 0, std::nullopt}, {"1", "1", 1, std::nullopt}}), "1:1");
}

TEST(ImportColumnsTest, NamesMayHaveEqualsSigns) {
    EXPECT_EQ(choose("a=b"), "1:a=b");
    EXPECT_EQ(choose("a=b=INT8"), "1:a=b:12");
    EXPECT_EQ(choose("", "a=b=c=d"), "0:t 1:c=d 2:acc0 3:acc1");
}

TEST(ImportColumnsTest, AllColumnsOfANameAreMeant) {
    const std::vector<CsvColumn> twins{{"x", "x", 0, std::nullopt}, {"x", "x", 1, std::nullopt}};
    EXPECT_EQ(choose("x=INT8", "x=y", twins), "0:y:12 1:y:12");
    EXPECT_EQ(choose("2", "2=y", twins), "1:y");
}

TEST(ImportColumnsTest, RenamedColumnsKeepTheirPlaces) {
    EXPECT_EQ(choose("", "t=TIME,acc=ACC"), "0:TIME 1:a=b 2:ACC0 3:ACC1");
    EXPECT_EQ(choose("", "acc0=ACCX,acc1=ACCY"), "0:t 1:a=b 2:ACCX 3:ACCY");
    EXPECT_EQ(choose("t", "acc=ACC,1=T"), "0:T");
    EXPECT_EQ(choose("t", "t=a\tb"), "0:a b");
}

TEST(ImportColumnsTest, UnknownColumnsAreWrongUsage) {
    EXPECT_EQ(refusal("T"), "--columns: 'T' means no column; there are: t, a=b, acc0, acc1");
    EXPECT_EQ(refusal("t,"), "--columns: '' means no column; there are: t, a=b, acc0, acc1");
    EXPECT_EQ(refusal("4"), "--columns: '4' means no column; there are: t, a=b, acc0, acc1");
    EXPECT_EQ(refusal("", "T=x"), "--rename: 'T=x' means no column; there are: t, a=b, acc0, acc1");
    EXPECT_EQ(refusal("", "t"), "--rename: 't' means no column; there are: t, a=b, acc0, acc1");
}

TEST(ImportColumnsTest, OtherMistakesAreWrongUsage) {
    EXPECT_THAT(refusal("t=REAL"),
                HasSubstr("--columns: 'REAL' is no column type; types are BOOL, INT8"));
    EXPECT_EQ(refusal("t,t=INT8"), "--columns: 't' is named twice");
    EXPECT_EQ(refusal("acc,acc1"), "--columns: 'acc1' is named twice");
    EXPECT_EQ(refusal("", "t="), "--rename: 't=' gives no new name");
}

}  // namespace
}  // namespace SensorFileTool
