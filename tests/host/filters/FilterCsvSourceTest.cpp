#include "host/PropertyStore.hpp"
#include "host/filters/FilterCsvSource.hpp"
#include "tests/host/filters/Support.hpp"

#include <cmath>
#include <filesystem>

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;
using namespace TestKit;

class FilterCsvSourceTest : public ::testing::Test {
 protected:
    void openRows(const std::string& columns = "p=x",
                  const std::string& content = "t,x\n1,10\n3,20\n7,30\n") {
        file_.write(content);
        set(source_, "File Name", file_.path());
        set(source_, "Columns", columns);
    }

    // As a host does at full speed.
    void runToEnd() {
        for (int i = 0; i < 100000 && !source_.isFinished(); ++i)
            source_.process();
    }

    bool isActive() { return get<bool>(source_, "Active"); }
    unsigned rows() { return get<unsigned>(source_, "Rows"); }

    ScratchFile file_;
    FilterCsvSource source_{"csv"};
};

TEST_F(FilterCsvSourceTest, PropertiesAndPinsOfAFreshSource) {
    EXPECT_THAT(source_.getPropertyBag()->getNames(),
                ElementsAre("File Name", "Separator", "Header", "Columns", "Time Column",
                            "Scale Time", "Rate", "Active", "Rows", "Rewind"));
    EXPECT_EQ(get<std::string>(source_, "Separator"), ",");
    EXPECT_EQ(get<unsigned>(source_, "Header"), 0U);
    EXPECT_EQ(get<double>(source_, "Scale Time"), 1.0);
    EXPECT_EQ(get<double>(source_, "Rate"), 0.0);
    EXPECT_TRUE(isActive());
    EXPECT_FALSE(property(source_, "Active").getIsPersistent());
    EXPECT_FALSE(property(source_, "Rows").getIsWritable());
    EXPECT_FALSE(property(source_, "Rows").getIsPersistent());
    EXPECT_TRUE(source_.getOutputPins().empty());
    EXPECT_TRUE(source_.isFinished());
    EXPECT_STREQ(source_.getClassName(), "FilterCsvSource");
    source_.process();
}

TEST_F(FilterCsvSourceTest, OneCallSendsOneRowOnEveryPin) {
    openRows("p=x,t;q=t");
    Receiver p(source_, "p");
    Receiver q(source_, "q");
    source_.process();
    ASSERT_TRUE(p.next());
    EXPECT_EQ(p.sample().value.rows(), 2);
    EXPECT_EQ(p.sample().value.cols(), 1);
    EXPECT_EQ(p.sample().value(0, 0), 10.0);
    EXPECT_EQ(p.sample().value(1, 0), 1.0);
    EXPECT_FALSE(p.next());
    EXPECT_THAT(q.takeValues(), ElementsAre(1.0));
}

TEST_F(FilterCsvSourceTest, ColumnsMayBeSetBeforeTheFile) {
    set(source_, "Columns", "p=x;q=t");
    EXPECT_THAT(outputNames(source_), ElementsAre("p", "q"));
    EXPECT_TRUE(source_.isFinished());
    file_.write("t,x\n1,10\n");
    set(source_, "File Name", file_.path());
    EXPECT_FALSE(source_.isFinished());
    Receiver q(source_, "q");
    runToEnd();
    EXPECT_THAT(q.takeValues(), ElementsAre(1.0));
}

TEST_F(FilterCsvSourceTest, EndOfTheFileTurnsActiveOff) {
    openRows();
    Receiver p(source_, "p");
    EXPECT_FALSE(source_.isFinished());
    source_.process();
    source_.process();
    EXPECT_TRUE(isActive());
    EXPECT_FALSE(source_.isFinished());
    source_.process();
    EXPECT_FALSE(isActive());
    EXPECT_TRUE(source_.isFinished());
    EXPECT_EQ(rows(), 3U);
    source_.process();
    EXPECT_THAT(p.takeValues(), ElementsAre(10, 20, 30));
}

TEST_F(FilterCsvSourceTest, ActiveSetAtTheEndBeginsAgain) {
    openRows();
    Receiver p(source_, "p");
    runToEnd();
    set(source_, "Active", true);
    EXPECT_EQ(rows(), 0U);
    runToEnd();
    EXPECT_THAT(p.takeTimes(), ElementsAre(0, 1, 2, 0, 1, 2));
}

TEST_F(FilterCsvSourceTest, InactiveSourcePausesAndGoesOn) {
    openRows();
    Receiver p(source_, "p");
    source_.process();
    set(source_, "Active", false);
    EXPECT_EQ(rows(), 1U);
    source_.process();
    EXPECT_EQ(p.count(), 1U);
    EXPECT_FALSE(source_.isFinished());
    set(source_, "Active", true);
    runToEnd();
    EXPECT_THAT(p.takeValues(), ElementsAre(10, 20, 30));
}

TEST_F(FilterCsvSourceTest, RewindSendsTheFirstRowNext) {
    openRows();
    Receiver p(source_, "p");
    source_.process();
    source_.process();
    trigger(source_, "Rewind");
    source_.process();
    EXPECT_THAT(p.takeValues(), ElementsAre(10, 20, 10));
    EXPECT_THAT(get<bool>(source_, "Active"), true);
}

TEST_F(FilterCsvSourceTest, RewindReadsAFileThatHasChanged) {
    openRows();
    Receiver p(source_, "p");
    file_.write("t,x\n1,99\n");
    trigger(source_, "Rewind");
    runToEnd();
    EXPECT_THAT(p.takeValues(), ElementsAre(99));
}

TEST_F(FilterCsvSourceTest, TimeStampsAreRowNumbersOrFollowTheRate) {
    openRows();
    Receiver p(source_, "p");
    runToEnd();
    EXPECT_THAT(p.takeTimes(), ElementsAre(0, 1, 2));
    set(source_, "Rate", 200.0);
    set(source_, "Active", true);
    runToEnd();
    EXPECT_THAT(p.takeTimes(), ElementsAre(0, 1 / 200.0, 2 / 200.0));
}

TEST_F(FilterCsvSourceTest, TimeColumnGivesScaledTimeStamps) {
    openRows("p=x");
    set(source_, "Rate", 100.0);
    set(source_, "Time Column", "t");
    set(source_, "Scale Time", 1e-9);
    Receiver p(source_, "p");
    runToEnd();
    EXPECT_THAT(p.takeTimes(), ElementsAre(1 * 1e-9, 3 * 1e-9, 7 * 1e-9));
}

TEST_F(FilterCsvSourceTest, RowsAreDueByTheRateAndNotBefore) {
    openRows();
    EXPECT_FALSE(source_.getNextDueTime().has_value());
    set(source_, "Rate", 50.0);
    EXPECT_EQ(source_.getNextDueTime(), 0.0);
    source_.process();
    EXPECT_EQ(source_.getNextDueTime(), 1 / 50.0);
    source_.process();
    EXPECT_EQ(source_.getNextDueTime(), 2 / 50.0);
    set(source_, "Active", false);
    EXPECT_FALSE(source_.getNextDueTime().has_value());
}

TEST_F(FilterCsvSourceTest, DueTimesGoOnAfterARewindAndAChangeOfTheRate) {
    openRows();
    set(source_, "Rate", 50.0);
    source_.process();
    trigger(source_, "Rewind");
    EXPECT_EQ(source_.getNextDueTime(), 1 / 50.0);
    set(source_, "Rate", 10.0);
    EXPECT_EQ(source_.getNextDueTime(), 1 / 50.0);
    source_.process();
    EXPECT_EQ(source_.getNextDueTime(), 1 / 50.0 + 1 / 10.0);
}

TEST_F(FilterCsvSourceTest, BadRowStopsTheSourceAfterTheRowBeforeIt) {
    openRows("p=x", "t,x\n1,10\n2,oops\n3,30\n");
    Receiver p(source_, "p");
    EXPECT_EQ(messageOf<Poco::DataFormatException>([&] { source_.process(); }),
              file_.path() + ", line 3, column 2 ('x'): 'oops' is not a number");
    EXPECT_THAT(p.takeValues(), ElementsAre(10));
    EXPECT_FALSE(isActive());
    EXPECT_TRUE(source_.isFinished());
    EXPECT_EQ(rows(), 1U);
    source_.process();
    EXPECT_EQ(p.count(), 0U);
}

TEST_F(FilterCsvSourceTest, BadFirstRowIsThrownToTheSetter) {
    file_.write("t,x\n1,oops\n");
    set(source_, "Columns", "p=x");
    EXPECT_EQ(
        messageOf<Poco::DataFormatException>([&] { set(source_, "File Name", file_.path()); }),
        file_.path() + ", line 2, column 2 ('x'): 'oops' is not a number");
    EXPECT_TRUE(source_.isFinished());
    source_.process();
}

TEST_F(FilterCsvSourceTest, FilesThatCannotBeReadAreThrownToTheSetter) {
    const ScratchFile missing;
    EXPECT_EQ(messageOf<Poco::IOException>([&] { set(source_, "File Name", missing.path()); }),
              "CSV file '" + missing.path() + "' does not exist");
    const std::string folder = std::filesystem::temp_directory_path().string();
    EXPECT_THROW(set(source_, "File Name", folder), Poco::IOException);
    file_.write("");
    EXPECT_THROW(set(source_, "File Name", file_.path()), Poco::IOException);
    set(source_, "File Name", "");
    EXPECT_TRUE(source_.isFinished());
}

TEST_F(FilterCsvSourceTest, FileAndColumnsCanBeChangedOneAfterTheOther) {
    openRows("p=x");
    const ScratchFile other("time;y\n1;5\n");
    EXPECT_THROW(set(source_, "File Name", other.path()), Poco::DataFormatException);
    EXPECT_TRUE(source_.isFinished());
    EXPECT_THROW(set(source_, "Separator", ";"), Poco::DataFormatException);
    set(source_, "Columns", "p=y");
    Receiver p(source_, "p");
    runToEnd();
    EXPECT_THAT(p.takeValues(), ElementsAre(5));
}

TEST_F(FilterCsvSourceTest, WrongTextsAreRefusedAndChangeNothing) {
    openRows("p=x");
    EXPECT_THROW(set(source_, "Columns", "p="), Poco::DataFormatException);
    EXPECT_THROW(set(source_, "Separator", "x"), Poco::DataFormatException);
    EXPECT_THROW(set(source_, "Time Column", "a,b"), Poco::DataFormatException);
    EXPECT_THROW(set(source_, "Rate", -1.0), Poco::RangeException);
    EXPECT_THROW(set(source_, "Rate", std::nan("")), Poco::RangeException);
    EXPECT_THROW(set(source_, "Scale Time", HUGE_VAL), Poco::RangeException);
    EXPECT_EQ(get<std::string>(source_, "Columns"), "p=x");
    EXPECT_EQ(get<std::string>(source_, "Separator"), ",");
    EXPECT_EQ(get<double>(source_, "Rate"), 0.0);
    Receiver p(source_, "p");
    runToEnd();
    EXPECT_THAT(p.takeValues(), ElementsAre(10, 20, 30));
}

TEST_F(FilterCsvSourceTest, PinsThatKeepNameAndPlaceKeepTheirConnections) {
    openRows("a=t;b=x;c=t");
    Receiver a(source_, "a");
    Receiver b(source_, "b");
    set(source_, "Columns", "a=x;z=x");
    EXPECT_THAT(outputNames(source_), ElementsAre("a", "z"));
    runToEnd();
    EXPECT_THAT(a.takeValues(), ElementsAre(10, 20, 30));
    EXPECT_EQ(b.count(), 0U);
    set(source_, "Columns", "");
    EXPECT_TRUE(source_.getOutputPins().empty());
    EXPECT_TRUE(source_.isFinished());
}

TEST_F(FilterCsvSourceTest, HeaderCanBeForced) {
    EXPECT_THROW(openRows("p=\"20\"", "10,20\n30,40\n"), Poco::DataFormatException);
    set(source_, "Header", 1U);
    Receiver p(source_, "p");
    runToEnd();
    EXPECT_THAT(p.takeValues(), ElementsAre(40));
    EXPECT_THROW(set(source_, "Header", 2U), Poco::DataFormatException);
}

TEST_F(FilterCsvSourceTest, SavedTextsRestoredInTheirOrderGiveTheSameSource) {
    file_.write("1;2\n3;4\n");
    set(source_, "File Name", file_.path());
    set(source_, "Separator", ";");
    set(source_, "Header", 1U);
    set(source_, "Columns", "p=\"2\"");
    set(source_, "Time Column", "\"1\"");

    FilterCsvSource restored("restored");
    EXPECT_TRUE(PropertyStore::restore(restored, PropertyStore::save(source_)).empty());
    Receiver p(restored, "p");
    restored.process();
    ASSERT_TRUE(p.next());
    EXPECT_EQ(p.sample().value(0, 0), 4.0);
    EXPECT_EQ(p.sample().timeStamp, 3.0);
}

TEST_F(FilterCsvSourceTest, CountOfRowsIsShownNowAndThen) {
    std::string content = "x\n";
    for (int i = 0; i < 2500; ++i)
        content += "1\n";
    openRows("p=x", content);
    for (int i = 0; i < 1500; ++i)
        source_.process();
    EXPECT_EQ(rows(), 1000U);
    set(source_, "Rate", 100.0);
    source_.process();
    EXPECT_EQ(rows(), 1501U);
    runToEnd();
    EXPECT_EQ(rows(), 2500U);
}

TEST_F(FilterCsvSourceTest, MissingFileThatAppearsIsReadByRewind) {
    const ScratchFile late;
    set(source_, "Columns", "p=#1");
    EXPECT_THROW(set(source_, "File Name", late.path()), Poco::IOException);
    EXPECT_THROW(trigger(source_, "Rewind"), Poco::IOException);
    late.write("5\n");
    trigger(source_, "Rewind");
    Receiver p(source_, "p");
    runToEnd();
    EXPECT_THAT(p.takeValues(), ElementsAre(5));
}

}  // namespace
}  // namespace Quoril::Core
