#include "framework/CommandProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/RangeProperty.hpp"
#include "framework/StringProperty.hpp"
#include "host/PropertyStore.hpp"

#include <memory>
#include <vector>

#include <Poco/Exception.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

using PropertyStore::SavedValue;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A filter whose properties come and go, as those of a recorder do.
class GrowingFilter final : public Filter {
 public:
    explicit GrowingFilter(const std::string& name) : Filter(name, true) {
        PropertyBag& bag = *getPropertyBag();
        bag.registerProperty("Record", record);
        bag.registerProperty("Pins Number", pinCount);
        bag.registerProperty("Save", save);
        bag.registerProperty("Frequency", frequency);
        record.setIsPersistent(false);
        frequency.setIsWritable(false);
        pinCount.setRange(0, 5, 1);
        pinCount.attach(*this, &GrowingFilter::onPinCount);
        record.attach(*this, &GrowingFilter::onRecord);
    }
    void process() override {}
    [[nodiscard]] const char* getClassName() const override { return "GrowingFilter"; }

    void onPinCount() {
        names.clear();
        getPropertyBag()->unregisterProperty("Frequency");
        for (int i = 1; i <= pinCount.get(); ++i) {
            const std::string name = "ColNames#" + std::to_string(i);
            names.push_back(std::make_unique<StringProperty>(name, getPropertyBag()));
            names.back()->attach(*this, &GrowingFilter::onName);
            getPropertyBag()->registerProperty(name, *names.back());
        }
        getPropertyBag()->registerProperty("Frequency", frequency);
    }
    void onName(const std::string& name) {
        order.push_back(name);
        if (name == "bad") throw Poco::DataException("bad name");
        if (name == "odd") throw 5;
    }
    void onRecord(const bool& /*isOn*/) { ++recordCalls; }

    ValueProperty<bool> record{"Record", getPropertyBag()};
    RangeProperty<int> pinCount{"Pins Number", getPropertyBag()};
    CommandProperty save{"Save", getPropertyBag()};
    ValueProperty<double> frequency{"Frequency", getPropertyBag(), 50.0};
    std::vector<std::unique_ptr<StringProperty>> names;
    std::vector<std::string> order;
    int recordCalls = 0;
};

TEST(PropertyStoreTest, SavesPersistentValuesInOrderOfRegistration) {
    GrowingFilter filter("filter");
    filter.pinCount.set(2);
    filter.names[1]->set("ax;ay");
    EXPECT_THAT(PropertyStore::save(filter),
                ElementsAre(SavedValue{"Pins Number", "2"}, SavedValue{"ColNames#1", ""},
                            SavedValue{"ColNames#2", "ax;ay"}, SavedValue{"Frequency", "50"}));
}

TEST(PropertyStoreTest, RestoresPropertiesThatAppearMeanwhile) {
    GrowingFilter saved("saved");
    saved.pinCount.set(2);
    saved.names[0]->set("t");
    saved.names[1]->set("ax;ay");
    GrowingFilter restored("restored");
    EXPECT_THAT(PropertyStore::restore(restored, PropertyStore::save(saved)), IsEmpty());
    EXPECT_EQ(PropertyStore::save(restored), PropertyStore::save(saved));
}

TEST(PropertyStoreTest, RestoresInOrderOfRegistrationWhateverTheOrderOfTheValues) {
    GrowingFilter filter("filter");
    EXPECT_THAT(PropertyStore::restore(
                    filter, {{"ColNames#2", "two"}, {"ColNames#1", "one"}, {"Pins Number", "2"}}),
                IsEmpty());
    EXPECT_THAT(filter.order, ElementsAre("one", "two"));
}

TEST(PropertyStoreTest, LeavesReadOnlyPropertiesAndSwitchesAlone) {
    GrowingFilter filter("filter");
    EXPECT_THAT(
        PropertyStore::restore(filter, {{"Frequency", "99"}, {"Record", "1"}, {"Save", ""}}),
        IsEmpty());
    EXPECT_EQ(filter.frequency.get(), 50.0);
    EXPECT_FALSE(filter.record.get());
    EXPECT_EQ(filter.recordCalls, 0);
}

TEST(PropertyStoreTest, CollectsRefusalsAndGoesOn) {
    GrowingFilter filter("filter");
    const auto problems = PropertyStore::restore(
        filter,
        {{"Pins Number", "2"}, {"ColNames#1", "bad"}, {"ColNames#2", "good"}, {"Gone", "1"}});
    ASSERT_EQ(problems.size(), 2U);
    EXPECT_EQ(problems[0].name, "ColNames#1");
    EXPECT_EQ(problems[0].text, "Data error: bad name");
    EXPECT_EQ(problems[1].name, "Gone");
    EXPECT_EQ(problems[1].text, "No such property");
    EXPECT_EQ(filter.names[1]->get(), "good");
}

TEST(PropertyStoreTest, ErrorOfAnyKindIsAProblemOfItsProperty) {
    GrowingFilter filter("filter");
    const auto problems =
        PropertyStore::restore(filter, {{"Pins Number", "1"}, {"ColNames#1", "odd"}});
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].name, "ColNames#1");
    EXPECT_EQ(problems[0].text, "unknown error");
}

TEST(PropertyStoreTest, ValueOutOfRangeIsAProblemOfItsProperty) {
    GrowingFilter filter("filter");
    const auto problems = PropertyStore::restore(filter, {{"Pins Number", "6"}});
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_THAT(problems[0].text, ::testing::HasSubstr("6 does not fit in [0;5], (step : 1)"));
}

}  // namespace
}  // namespace Quoril::Core
