#include "sensorfile/ColumnType.hpp"
#include "tests/sensorfile/TestSupport.hpp"
#include "tools/common/UsageException.hpp"
#include "tools/recording/ColumnChoice.hpp"

#include <Poco/Exception.h>

namespace SensorFileTool {
namespace {

using Indexes = std::vector<std::size_t>;

Indexes choose(const std::string& patterns) {
    using SensorFile::kInt16;
    return chooseColumns(SensorFile::configOf({{"COUNT", kInt16},
                                               {"ACCX", kInt16},
                                               {"ACCY", kInt16},
                                               {"acc x", kInt16},
                                               {"", kInt16}}),
                         patterns);
}

TEST(ColumnChoiceTest, NoPatternsAreAllColumns) {
    EXPECT_EQ(choose(""), (Indexes{0, 1, 2, 3, 4}));
}

TEST(ColumnChoiceTest, NamesAreTakenInTheOrderOfTheList) {
    EXPECT_EQ(choose("ACCY,COUNT"), (Indexes{2, 0}));
    EXPECT_EQ(choose("acc x"), Indexes{3});
    EXPECT_EQ(choose(" ACCY , COUNT "), (Indexes{2, 0}));
}

TEST(ColumnChoiceTest, ColumnsAreTakenOnce) {
    EXPECT_EQ(choose("ACCY,ACC*,ACCY,*"), (Indexes{2, 1, 0, 3, 4}));
}

TEST(ColumnChoiceTest, StarsStandForAnyCharactersAndNone) {
    EXPECT_EQ(choose("ACC*"), (Indexes{1, 2}));
    EXPECT_EQ(choose("ACCX*"), Indexes{1});
    EXPECT_EQ(choose("*C*X"), Indexes{1});
    EXPECT_EQ(choose("*C*C*"), (Indexes{1, 2}));
    EXPECT_EQ(choose("**"), (Indexes{0, 1, 2, 3, 4}));
}

TEST(ColumnChoiceTest, QuestionMarksStandForOneCharacter) {
    EXPECT_EQ(choose("ACC?"), (Indexes{1, 2}));
    EXPECT_EQ(choose("?????"), (Indexes{0, 3}));
}

TEST(ColumnChoiceTest, CaseCountsAndWholeNamesMatch) {
    for (const char* pattern : {"accx", "ACC", "CCX", "ACCXX", "ACCX?"})
        EXPECT_THROW_MESSAGE((void)choose(pattern), UsageException,
                             "--columns: no column matches '" + std::string(pattern) +
                                 "'; there are: COUNT, ACCX, ACCY, acc x, ");
}

TEST(ColumnChoiceTest, TheFirstPatternWithoutAColumnIsNamed) {
    EXPECT_THROW_MESSAGE(
        (void)choose("COUNT,GYR*,MAG*"), UsageException,
        "--columns: no column matches 'GYR*'; there are: COUNT, ACCX, ACCY, acc x, ");
}

TEST(ColumnChoiceTest, AListOfCommasAloneNamesNoColumn) {
    EXPECT_THROW_MESSAGE(
        (void)choose(" , "), UsageException,
        "--columns: no column matches ' , '; there are: COUNT, ACCX, ACCY, acc x, ");
}

TEST(ColumnChoiceTest, ManyStarsDoNotTakeForEver) {
    const auto config = SensorFile::configOf({{std::string(200, 'a'), SensorFile::kInt16}});
    EXPECT_THROW((void)chooseColumns(config, "*a*a*a*a*a*a*a*a*a*a*a*a*b"), UsageException);
}

}  // namespace
}  // namespace SensorFileTool
