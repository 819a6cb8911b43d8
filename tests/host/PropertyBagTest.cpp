#include "framework/PropertyBag.hpp"
#include "framework/ValueProperty.hpp"
#include "tests/host/PropertyFixture.hpp"

#include <Poco/Exception.h>
#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;

class PropertyBagTest : public ::testing::Test {
 protected:
    PropertyBagTest() {
        bag_.registerProperty("B", b_);
        bag_.registerProperty("A", a_);
    }
    void attachA() { a_.attach(*this, &PropertyBagTest::onA); }
    void onA() {
        bag_.unregisterProperty("A");
        bag_.unregisterProperty("B");
        bag_.registerProperty("A", a_);
        bag_.registerProperty("B", b_);
    }

    TestOwner owner_;
    PropertyBag& bag_ = *owner_.getPropertyBag();
    ValueProperty<int> a_{"A", &bag_};
    ValueProperty<int> b_{"B", &bag_};
};

TEST_F(PropertyBagTest, NamesKeepTheOrderOfRegistration) {
    EXPECT_THAT(bag_.getNames(), ElementsAre("B", "A"));
    EXPECT_EQ(bag_.find("A"), &a_);
    EXPECT_EQ(bag_.find("C"), nullptr);
}

TEST_F(PropertyBagTest, TakenNameIsRefusedAndUnknownOneIgnored) {
    EXPECT_THROW(bag_.registerProperty("A", b_), Poco::ExistsException);
    bag_.unregisterProperty("C");
    EXPECT_THAT(bag_.getNames(), ElementsAre("B", "A"));
}

TEST_F(PropertyBagTest, RegisteringAnewMovesToTheEnd) {
    bag_.unregisterProperty("B");
    bag_.registerProperty("B", b_);
    EXPECT_THAT(bag_.getNames(), ElementsAre("A", "B"));
}

TEST_F(PropertyBagTest, SetterMayRegisterItsOwnPropertyAnew) {
    attachA();
    for (const std::string& name : bag_.getNames())
        static_cast<ValueProperty<int>*>(bag_.find(name))->set(1);
    EXPECT_THAT(bag_.getNames(), ElementsAre("A", "B"));
    EXPECT_EQ(a_.get(), 1);
}

}  // namespace
}  // namespace Quoril::Core
