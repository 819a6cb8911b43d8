#include "framework/EnumProperty.hpp"
#include "tests/framework/TestSupport.hpp"
#include "tests/support/ExpectThrow.hpp"

#include <memory>
#include <vector>

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::BagOwner;
using FrameworkTest::CountingObserver;
using Support::expectThrow;
using testing::ElementsAre;
using testing::IsEmpty;

class EnumPropertyTest : public testing::Test {
 public:
    EnumPropertyTest() { property.setEntries({"UCHAR", "CHAR", "USHORT"}); }
    void see(const unsigned int& value) { seen.push_back(value); }

    BagOwner owner;
    EnumProperty<std::string> property{"ColTypes", owner.getPropertyBag(), 1};
    std::vector<unsigned int> seen;
};

TEST_F(EnumPropertyTest, TakesEveryIndexOfAnEntry) {
    property.set(2);
    EXPECT_EQ(property.get(), 2U);
    property.set(0);
    EXPECT_EQ(property.get(), 0U);
    EXPECT_THAT(property.getEntries(), ElementsAre("UCHAR", "CHAR", "USHORT"));
}

TEST_F(EnumPropertyTest, RefusesTheIndexAfterTheLastEntryWithoutAMessage) {
    expectThrow<Poco::RangeException>("", [&] { property.set(3); });
    expectThrow<Poco::RangeException>("", [&] { property.deSerialize("-1"); });
    EXPECT_EQ(property.get(), 1U);
}

TEST_F(EnumPropertyTest, WithoutEntriesEveryIndexPasses) {
    EnumProperty<std::string> empty("Empty", owner.getPropertyBag());
    EXPECT_THAT(empty.getEntries(), IsEmpty());
    empty.set(4294967295U);
    EXPECT_EQ(empty.get(), 4294967295U);
}

TEST_F(EnumPropertyTest, RangeComesFirstEvenOnAReadOnlyProperty) {
    property.attach(*this, &EnumPropertyTest::see);
    property.setIsWritable(false);
    expectThrow<Poco::RangeException>("", [&] { property.set(3); });
    expectThrow<Poco::NoPermissionException>("Property 'ColTypes' is not writable",
                                             [&] { property.set(2); });
    EXPECT_THAT(seen, IsEmpty());
}

TEST_F(EnumPropertyTest, CallbackNeverSeesARefusedIndex) {
    property.attach(*this, &EnumPropertyTest::see);
    EXPECT_THROW(property.set(3), Poco::RangeException);
    property.set(2);
    EXPECT_THAT(seen, ElementsAre(2U));
}

TEST_F(EnumPropertyTest, TextIsTheIndex) {
    std::string text;
    property.serialize(text);
    EXPECT_EQ(text, "1");
    property.deSerialize("2");
    EXPECT_EQ(property.get(), 2U);
    EXPECT_THROW(property.deSerialize("CHAR"), Poco::DataFormatException);
}

class NotingObserver : public EnumEntriesObserver {
 public:
    explicit NotingObserver(std::vector<std::string>& notes, std::string name)
        : notes_(notes), name_(std::move(name)) {}
    ~NotingObserver() override { notes_.push_back(name_ + " gone"); }
    void entriesChanged() override { notes_.push_back(name_ + " told"); }

 private:
    std::vector<std::string>& notes_;
    const std::string name_;
};

TEST_F(EnumPropertyTest, ListObserverIsToldBeforeThePropertysObservers) {
    std::vector<std::string> notes;
    class AttributeNotes : public PropertyObserver {
     public:
        explicit AttributeNotes(std::vector<std::string>& notes) : notes_(notes) {}
        void valueChanged(const AbstractProperty& /*property*/) override {}
        void attributeChanged(const AbstractProperty& /*property*/) override {
            notes_.emplace_back("attribute");
        }

     private:
        std::vector<std::string>& notes_;
    } observer(notes);
    property.addObserver(observer);
    property.setEntriesObserver(std::make_unique<NotingObserver>(notes, "list"));
    property.setEntries({"DOUBLE", "INT32"});
    EXPECT_THAT(notes, ElementsAre("list told", "attribute"));
    property.entriesChanged();
    EXPECT_EQ(notes.size(), 4U);
    property.removeObserver(observer);
    property.setEntriesObserver(nullptr);
}

TEST_F(EnumPropertyTest, OwnsItsListObserver) {
    std::vector<std::string> notes;
    {
        EnumProperty<std::string> owning("Owning", owner.getPropertyBag());
        owning.setEntriesObserver(std::make_unique<NotingObserver>(notes, "first"));
        owning.setEntriesObserver(std::make_unique<NotingObserver>(notes, "second"));
        EXPECT_THAT(notes, ElementsAre("first gone"));
    }
    EXPECT_THAT(notes, ElementsAre("first gone", "second gone"));
}

TEST_F(EnumPropertyTest, FewerEntriesLeaveTheValue) {
    CountingObserver observer;
    property.addObserver(observer);
    property.set(2);
    property.setEntries({"DOUBLE"});
    EXPECT_EQ(property.get(), 2U);
    EXPECT_EQ(observer.values, 1);
    EXPECT_EQ(observer.attributes, 1);
}

}  // namespace
}  // namespace Quoril::Core
