#include "host/filters/FilterMatrixSource.hpp"
#include "tests/host/filters/Support.hpp"

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;
using namespace TestKit;

class FilterMatrixSourceTest : public ::testing::Test {
 protected:
    FilterMatrixSource source_{"constant"};
    Receiver receiver_{source_, "matrix"};
};

TEST_F(FilterMatrixSourceTest, PropertiesAndPinOfAFreshSource) {
    EXPECT_THAT(source_.getPropertyBag()->getNames(), ElementsAre("Matrix", "Time Stamp", "Send"));
    EXPECT_THAT(outputNames(source_), ElementsAre("matrix"));
    EXPECT_STREQ(source_.getClassName(), "FilterMatrixSource");
    EXPECT_TRUE(source_.isFinished());
    source_.process();
    EXPECT_EQ(receiver_.count(), 0U);
}

TEST_F(FilterMatrixSourceTest, MatrixIsSentOnce) {
    set(source_, "Matrix", "1 2; 3 4; 5 6");
    set(source_, "Time Stamp", 2.5);
    EXPECT_FALSE(source_.isFinished());
    EXPECT_FALSE(source_.getNextDueTime().has_value());
    source_.process();
    EXPECT_TRUE(source_.isFinished());
    source_.process();
    ASSERT_EQ(receiver_.count(), 1U);
    ASSERT_TRUE(receiver_.next());
    EXPECT_EQ(receiver_.sample().timeStamp, 2.5);
    EXPECT_EQ(receiver_.sample().value, (Eigen::MatrixXd(3, 2) << 1, 2, 3, 4, 5, 6).finished());
}

TEST_F(FilterMatrixSourceTest, CommandSendsItAgainAtTheNextCall) {
    set(source_, "Matrix", "1");
    source_.process();
    set(source_, "Matrix", "2");
    source_.process();
    EXPECT_THAT(receiver_.takeValues(), ElementsAre(1));
    trigger(source_, "Send");
    EXPECT_EQ(receiver_.count(), 0U);
    EXPECT_FALSE(source_.isFinished());
    source_.process();
    source_.process();
    EXPECT_THAT(receiver_.takeValues(), ElementsAre(2));
}

TEST_F(FilterMatrixSourceTest, BadTextIsRefusedAndTheOldMatrixStays) {
    set(source_, "Matrix", "1");
    EXPECT_THROW(set(source_, "Matrix", "1 2; x"), Poco::DataFormatException);
    EXPECT_EQ(get<std::string>(source_, "Matrix"), "1");
    source_.process();
    EXPECT_THAT(receiver_.takeValues(), ElementsAre(1));
}

}  // namespace
}  // namespace Quoril::Core
