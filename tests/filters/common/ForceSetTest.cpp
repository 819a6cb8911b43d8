#include "filters/common/ForceSet.hpp"
#include "tests/support/ExpectThrow.hpp"

#include <vector>

#include <gmock/gmock.h>

using Quoril::Core::AbstractProperty;
using Quoril::Core::ValueProperty;

namespace {

class Watcher : public Quoril::Core::PropertyObserver {
 public:
    explicit Watcher(AbstractProperty& property) : property_(property) {
        property_.addObserver(*this);
    }
    ~Watcher() override { property_.removeObserver(*this); }

    void valueChanged(const AbstractProperty& /*property*/) override { events.push_back("value"); }
    void attributeChanged(const AbstractProperty& property) override {
        events.push_back(property.getIsWritable() ? "writable" : "read-only");
    }

    std::vector<std::string> events;

 private:
    AbstractProperty& property_;
};

struct Refuser {
    void refuse(const int& /*value*/) { throw Poco::DataException("no"); }
};

class FailingObserver : public Quoril::Core::PropertyObserver {
 public:
    explicit FailingObserver(AbstractProperty& property) : property_(property) {
        property_.addObserver(*this);
    }
    ~FailingObserver() override { property_.removeObserver(*this); }

    void valueChanged(const AbstractProperty& /*property*/) override {
        throw Poco::IOException("told too late");
    }
    void attributeChanged(const AbstractProperty& /*property*/) override {}

 private:
    AbstractProperty& property_;
};

}  // namespace

TEST(ForceSetTest, SetsAReadOnlyPropertyAndTellsOfEachStep) {
    ValueProperty<int> property("n", nullptr, 1);
    property.setIsWritable(false);
    Watcher watcher(property);
    Filters::forceSet(property, 5);
    EXPECT_EQ(property.get(), 5);
    EXPECT_FALSE(property.getIsWritable());
    EXPECT_THAT(watcher.events, testing::ElementsAre("writable", "value", "read-only"));
}

TEST(ForceSetTest, WritablePropertyStaysWritable) {
    ValueProperty<int> property("n", nullptr, 1);
    Filters::forceSet(property, 5);
    EXPECT_EQ(property.get(), 5);
    EXPECT_TRUE(property.getIsWritable());
}

TEST(ForceSetTest, RefusedValueLeavesValueAndFlag) {
    Refuser refuser;
    ValueProperty<int> property("n", nullptr, 1);
    property.attach(refuser, &Refuser::refuse);
    property.setIsWritable(false);
    Support::expectThrow<Poco::DataException>("no", [&] { Filters::forceSet(property, 5); });
    EXPECT_EQ(property.get(), 1);
    EXPECT_FALSE(property.getIsWritable());
}

TEST(ForceSetQuietlyTest, SetsAReadOnlyProperty) {
    ValueProperty<int> property("n", nullptr, 1);
    property.setIsWritable(false);
    Filters::forceSetQuietly(property, 5);
    EXPECT_EQ(property.get(), 5);
    EXPECT_FALSE(property.getIsWritable());
}

TEST(ForceSetQuietlyTest, RefusedValueIsKeptQuietWithValueAndFlagLeft) {
    Refuser refuser;
    ValueProperty<int> property("n", nullptr, 1);
    property.attach(refuser, &Refuser::refuse);
    property.setIsWritable(false);
    Filters::forceSetQuietly(property, 5);
    EXPECT_EQ(property.get(), 1);
    EXPECT_FALSE(property.getIsWritable());
}

TEST(ForceSetQuietlyTest, FailingObserverIsKeptQuietAfterTheValueIsStored) {
    ValueProperty<int> property("n", nullptr, 1);
    property.setIsWritable(false);
    const FailingObserver observer(property);
    Filters::forceSetQuietly(property, 5);
    EXPECT_EQ(property.get(), 5);
    EXPECT_FALSE(property.getIsWritable());
}
