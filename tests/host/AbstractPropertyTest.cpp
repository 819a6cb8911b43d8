#include "framework/AbstractProperty.hpp"
#include "framework/ValueProperty.hpp"
#include "tests/host/PropertyFixture.hpp"

#include <memory>

#include <Poco/Exception.h>
#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AbstractPropertyTest : public ::testing::Test {
 protected:
    // Here, since a test's own class is not the one that the handlers belong to.
    void attachPlain() { property_->attach(*this, &AbstractPropertyTest::onPlain); }
    void attachTyped() { flag_->attach(*this, &AbstractPropertyTest::onTyped); }
    void attachOther(AbstractProperty& property) {
        property.attach(*this, &AbstractPropertyTest::onOther);
    }
    void onPlain() {
        events_.push_back("plain " + std::to_string(property_->get()) +
                          (owner_.synchronizer.isHeldByThisThread() ? " locked" : " unlocked"));
        if (onPlainCall_) onPlainCall_();
    }
    void onTyped(const bool& value) {
        events_.push_back(std::string("typed ") + (value ? "1" : "0") + " over " +
                          std::to_string(flag_->get()));
    }
    void onOther() { events_.emplace_back("other"); }

    TestOwner owner_;
    std::vector<std::string> events_;
    RecordingObserver observer_{events_};
    std::unique_ptr<ValueProperty<int>> property_ =
        std::make_unique<ValueProperty<int>>("Count", owner_.getPropertyBag());
    std::unique_ptr<ValueProperty<bool>> flag_ =
        std::make_unique<ValueProperty<bool>>("Record", owner_.getPropertyBag());
    std::function<void()> onPlainCall_;
};

TEST_F(AbstractPropertyTest, PlainCallbackAloneIsToldOfChangesAfterTheStoreUnderTheLock) {
    attachPlain();
    property_->set(3);
    EXPECT_THAT(events_, ElementsAre("plain 3 locked"));
}

TEST_F(AbstractPropertyTest, EqualValueTellsNobody) {
    attachPlain();
    property_->addObserver(observer_);
    property_->set(0);
    EXPECT_THAT(events_, IsEmpty());
}

TEST_F(AbstractPropertyTest, PlainCallbackComesBeforeTheObservers) {
    property_->addObserver(observer_);
    attachPlain();
    property_->set(1);
    EXPECT_THAT(events_, ElementsAre("plain 1 locked", "value Count"));
}

TEST_F(AbstractPropertyTest, TypedCallbackSeesTheOldValueAndThePlainOneTheNew) {
    attachTyped();
    attachOther(*flag_);
    flag_->set(true);
    EXPECT_THAT(events_, ElementsAre("typed 1 over 0", "other"));
}

TEST_F(AbstractPropertyTest, AttributeChangeTellsObserversOnly) {
    property_->addObserver(observer_);
    attachPlain();
    property_->setIsWritable(false);
    EXPECT_THAT(events_, ElementsAre("attribute Count"));
}

TEST_F(AbstractPropertyTest, ThrowingPlainCallbackReachesTheCallerAfterTheObserversWereTold) {
    property_->addObserver(observer_);
    attachPlain();
    onPlainCall_ = [] { throw Poco::IOException("no space"); };
    EXPECT_THROW(property_->set(2), Poco::IOException);
    EXPECT_EQ(property_->get(), 2);
    EXPECT_THAT(events_, ElementsAre("plain 2 locked", "value Count"));
    EXPECT_FALSE(owner_.synchronizer.isHeldByThisThread());
}

TEST_F(AbstractPropertyTest, NotifierInAFailedStoreTellsNobody) {
    property_->addObserver(observer_);
    try {
        const AbstractProperty::ScopedChangeValueNotifier notifier(property_.get(), true);
        throw std::runtime_error("the store failed");
    } catch (const std::runtime_error&) {
    }
    EXPECT_THAT(events_, IsEmpty());
}

TEST_F(AbstractPropertyTest, NotifierWithinTheHandlingOfAnotherErrorStillTells) {
    property_->addObserver(observer_);
    struct SetsWhileUnwinding {
        ValueProperty<int>& property;
        ~SetsWhileUnwinding() { property.set(9); }
    };
    try {
        const SetsWhileUnwinding setter{*property_};
        throw std::runtime_error("on its way");
    } catch (const std::runtime_error&) {
    }
    EXPECT_THAT(events_, ElementsAre("value Count"));
}

TEST_F(AbstractPropertyTest, CallbackMayReplaceItselfWhileItRuns) {
    attachPlain();
    onPlainCall_ = [this] { attachOther(*property_); };
    property_->set(1);
    property_->set(2);
    EXPECT_THAT(events_, ElementsAre("plain 1 locked", "other"));
}

TEST_F(AbstractPropertyTest, ObserverMayRemoveAnotherOneWhileBeingTold) {
    RecordingObserver second(events_);
    property_->addObserver(observer_);
    property_->addObserver(second);
    observer_.onValue = [&] { property_->removeObserver(second); };
    property_->set(1);
    EXPECT_THAT(events_, ElementsAre("value Count"));
}

TEST_F(AbstractPropertyTest, ObserverStaysWhenThePropertyIsRegisteredAnew) {
    property_->addObserver(observer_);
    owner_.getPropertyBag()->registerProperty("Count", *property_);
    owner_.getPropertyBag()->unregisterProperty("Count");
    owner_.getPropertyBag()->registerProperty("Count", *property_);
    property_->set(1);
    EXPECT_THAT(events_, ElementsAre("value Count"));
}

TEST_F(AbstractPropertyTest, DestroyedPropertyLeavesTheBagUnderEveryName) {
    PropertyBag& bag = *owner_.getPropertyBag();
    bag.registerProperty("Count", *property_);
    bag.registerProperty("Alias", *property_);
    bag.registerProperty("Record", *flag_);
    property_.reset();
    EXPECT_THAT(bag.getNames(), ElementsAre("Record"));
}

TEST_F(AbstractPropertyTest, PropertyWithoutBagIsNeverLocked) {
    ValueProperty<int> lonely("Lonely", nullptr, 5);
    EXPECT_EQ(lonely.getSynchronizer(), nullptr);
    lonely.set(6);
    EXPECT_EQ(lonely.get(), 6);
}

TEST_F(AbstractPropertyTest, UnknownVisitorIsLeftAlone) {
    class Stranger final : public Util::System::AbstractVisitor {
    } visitor;
    property_->accept(visitor);
}

}  // namespace
}  // namespace Quoril::Core
