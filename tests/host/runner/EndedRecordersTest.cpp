#include "host/Flow.hpp"
#include "host/runner/EndedRecorders.hpp"
#include "tests/host/runner/KnobsFilter.hpp"

#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

using Testing::KnobsFilter;

class EndedRecordersTest : public testing::Test {
 protected:
    EndedRecordersTest() {
        Testing::installKnobs();
        knobs_ = &dynamic_cast<KnobsFilter&>(
            flow_.addFilter("FilterKnobs", "a", flow_.addLayout("main")));
        knobs_->pinsNumber.set(1);
        pin_ = knobs_->findInputPin("input#1");
        pin_->setBuffer({.size = 16, .isLifo = true});
    }

    Core::Flow flow_;
    KnobsFilter* knobs_;
    Core::AbstractInputPin* pin_;
    EndedRecorders ended_{flow_};
};

TEST_F(EndedRecordersTest, HoldNobodyBack) {
    ended_.letPass();
    EXPECT_EQ(pin_->getBuffer().size, 16U) << "nothing has ended";
    ended_.add("a");
    EXPECT_EQ(pin_->getBuffer().size, 16U) << "only the editing thread touches pins";
    ended_.letPass();
    EXPECT_EQ(pin_->getBuffer().size, 1U);
}

TEST_F(EndedRecordersTest, HaveTheirBuffersWhenTheyCouldStartAgain) {
    ended_.add("a");
    ended_.letPass();
    ended_.giveBack();
    EXPECT_EQ(pin_->getBuffer().size, 16U);
    EXPECT_TRUE(pin_->getBuffer().isLifo);
    ended_.letPass();
    EXPECT_EQ(pin_->getBuffer().size, 1U) << "it was not started";
    ended_.giveBack();
    knobs_->record.set(true);
    ended_.letPass();
    EXPECT_EQ(pin_->getBuffer().size, 16U);
    ended_.giveBack();
    knobs_->record.set(false);
    ended_.letPass();
    EXPECT_EQ(pin_->getBuffer().size, 16U) << "this one was ended by the user";
}

TEST_F(EndedRecordersTest, MayLoseTheirPinsMeanwhile) {
    ended_.add("a");
    ended_.letPass();
    ended_.giveBack();
    knobs_->pinsNumber.set(0);
    EXPECT_NO_THROW(ended_.letPass());
    EXPECT_NO_THROW(ended_.giveBack());
}

}  // namespace
}  // namespace Quoril::Runner
