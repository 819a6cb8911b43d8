#include "framework/CommandProperty.hpp"
#include "tests/host/PropertyFixture.hpp"

#include <Poco/Exception.h>
#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;

class CommandPropertyTest : public ::testing::Test {
 protected:
    CommandPropertyTest() { command_.attach(*this, &CommandPropertyTest::onTrigger); }
    void onTrigger() {
        ++triggers_;
        wasLocked_ = owner_.synchronizer.isHeldByThisThread();
        if (fails_) throw Poco::IOException("disk full");
    }

    TestOwner owner_;
    CommandProperty command_{"Save", owner_.getPropertyBag()};
    int triggers_ = 0;
    bool wasLocked_ = false;
    bool fails_ = false;
};

TEST_F(CommandPropertyTest, EachTriggerRunsTheCallbackUnderTheLock) {
    command_.trigger();
    command_.trigger();
    EXPECT_EQ(triggers_, 2);
    EXPECT_TRUE(wasLocked_);
}

TEST_F(CommandPropertyTest, SettingAnyValueTriggers) {
    command_.setAny(Poco::Any(1));
    EXPECT_EQ(triggers_, 1);
    EXPECT_TRUE(command_.getAny().empty());
}

TEST_F(CommandPropertyTest, ReadOnlyCommandRefusesItsTrigger) {
    command_.setIsWritable(false);
    try {
        command_.trigger();
        FAIL();
    } catch (const Poco::NoPermissionException& error) {
        EXPECT_EQ(error.message(), "Property 'Save' is not writable");
    }
    EXPECT_EQ(triggers_, 0);
}

TEST_F(CommandPropertyTest, ErrorOfTheCallbackReachesTheUserAndFreesTheLock) {
    fails_ = true;
    EXPECT_THROW(command_.trigger(), Poco::IOException);
    EXPECT_FALSE(owner_.synchronizer.isHeldByThisThread());
}

TEST_F(CommandPropertyTest, RestoringNeverPressesTheButton) {
    std::string text = "old";
    command_.serialize(text);
    EXPECT_EQ(text, "");
    command_.deSerialize("1");
    EXPECT_EQ(triggers_, 0);
    EXPECT_FALSE(command_.getIsPersistent());
}

TEST_F(CommandPropertyTest, ObserversHearOfTriggersAndOfWritability) {
    std::vector<std::string> events;
    RecordingObserver observer(events);
    command_.addObserver(observer);
    command_.trigger();
    command_.setIsWritable(false);
    EXPECT_THAT(events, ElementsAre("value Save", "attribute Save"));
}

}  // namespace
}  // namespace Quoril::Core
