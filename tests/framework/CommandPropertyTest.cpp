#include "framework/CommandProperty.hpp"
#include "tests/framework/TestSupport.hpp"
#include "tests/support/ExpectThrow.hpp"

#include <stdexcept>

namespace Quoril::Core {
namespace {

using FrameworkTest::BagOwner;
using FrameworkTest::CountingObserver;
using Support::expectThrow;

class CommandPropertyTest : public testing::Test {
 public:
    void run() {
        ++runs;
        if (throws) throw std::runtime_error("failed");
    }

    BagOwner owner;
    CommandProperty command{"Reload File", owner.getPropertyBag()};
    int runs = 0;
    bool throws = false;
};

TEST_F(CommandPropertyTest, EachTriggerRunsTheCallback) {
    command.attach(*this, &CommandPropertyTest::run);
    command.trigger();
    command.trigger();
    EXPECT_EQ(runs, 2);
}

TEST_F(CommandPropertyTest, TriggerWithoutCallbackTellsObservers) {
    CountingObserver observer;
    command.addObserver(observer);
    command.trigger();
    EXPECT_EQ(observer.values, 1);
}

TEST_F(CommandPropertyTest, ReadOnlyRefusesTheTrigger) {
    command.attach(*this, &CommandPropertyTest::run);
    CountingObserver observer;
    command.addObserver(observer);
    command.setIsWritable(false);
    EXPECT_EQ(observer.attributes, 1);
    EXPECT_FALSE(command.getIsWritable());
    expectThrow<Poco::NoPermissionException>("Property 'Reload File' is not writable",
                                             [&] { command.trigger(); });
    EXPECT_EQ(runs, 0);
}

TEST_F(CommandPropertyTest, FailureReachesTheCallerAndFreesTheLock) {
    command.attach(*this, &CommandPropertyTest::run);
    throws = true;
    EXPECT_THROW(command.trigger(), std::runtime_error);
    throws = false;
    command.trigger();
    EXPECT_EQ(runs, 2);
}

TEST_F(CommandPropertyTest, IsNeverPressedByARestore) {
    command.attach(*this, &CommandPropertyTest::run);
    std::string text = "x";
    command.serialize(text);
    EXPECT_EQ(text, "");
    command.deSerialize(text);
    command.deSerialize("1");
    EXPECT_FALSE(command.getIsPersistent());
    EXPECT_EQ(runs, 0);
}

TEST_F(CommandPropertyTest, SetAnyTriggersAndGetAnyIsEmpty) {
    command.attach(*this, &CommandPropertyTest::run);
    command.setAny(Poco::Any(5));
    EXPECT_EQ(runs, 1);
    EXPECT_TRUE(command.getAny().empty());
}

}  // namespace
}  // namespace Quoril::Core
