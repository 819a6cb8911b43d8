#include "framework/ValueProperty.hpp"
#include "tests/framework/TestSupport.hpp"
#include "tests/support/ExpectThrow.hpp"

#include <limits>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::BagOwner;
using FrameworkTest::CountingObserver;
using Support::expectThrow;
using testing::ElementsAre;
using testing::IsEmpty;

template <class T>
T stored(const ValueProperty<T>& property) {
    return *Poco::AnyCast<const T*>(property.getAny());
}

// --- One value type after the other ---------------------------------------------------------

template <class T>
struct Values;
template <>
struct Values<bool> {
    static bool first() { return false; }
    static bool second() { return true; }
};
template <>
struct Values<std::string> {
    static std::string first() { return "one"; }
    static std::string second() { return "another"; }
};
template <class Number>
requires std::numeric_limits<Number>::is_specialized struct Values<Number> {
    static Number first() { return Number{7}; }
    static Number second() { return Number{9}; }
};

template <class T>
class EachValueProperty : public testing::Test {
 public:
    void accept(const T& value) { accepted.push_back(value); }

    BagOwner owner;
    ValueProperty<T> property{"Gain", owner.getPropertyBag(), Values<T>::first()};
    std::vector<T> accepted;
};

using ValueTypes = testing::Types<bool, int, unsigned int, short, double, std::string>;
TYPED_TEST_SUITE(EachValueProperty, ValueTypes);

TYPED_TEST(EachValueProperty, StartsWithItsInitialValueWritableAndPersistent) {
    EXPECT_EQ(this->property.getName(), "Gain");
    EXPECT_EQ(this->property.get(), Values<TypeParam>::first());
    EXPECT_TRUE(this->property.getIsWritable());
    EXPECT_TRUE(this->property.getIsPersistent());
    EXPECT_EQ(ValueProperty<TypeParam>("Other", nullptr).get(), TypeParam());
}

TYPED_TEST(EachValueProperty, SetStoresTheValueAndRunsTheTypedCallback) {
    this->property.attach(*this, &EachValueProperty<TypeParam>::accept);
    this->property.set(Values<TypeParam>::second());
    EXPECT_EQ(this->property.get(), Values<TypeParam>::second());
    EXPECT_THAT(this->accepted, ElementsAre(Values<TypeParam>::second()));
}

TYPED_TEST(EachValueProperty, TypedCallbackRunsForEqualValuesToo) {
    this->property.attach(*this, &EachValueProperty<TypeParam>::accept);
    this->property.set(Values<TypeParam>::first());
    EXPECT_THAT(this->accepted, ElementsAre(Values<TypeParam>::first()));
}

TYPED_TEST(EachValueProperty, ReadOnlyRefusesEveryWayToSetAndKeepsTheValue) {
    this->property.attach(*this, &EachValueProperty<TypeParam>::accept);
    this->property.setIsWritable(false);
    std::string text;
    this->property.serialize(text);
    const std::string message = "Property 'Gain' is not writable";
    expectThrow<Poco::NoPermissionException>(
        message, [&] { this->property.set(Values<TypeParam>::second()); });
    expectThrow<Poco::NoPermissionException>(message, [&] { this->property.deSerialize(text); });
    expectThrow<Poco::NoPermissionException>(
        message, [&] { this->property.setAny(Poco::Any(Values<TypeParam>::second())); });
    EXPECT_EQ(this->property.get(), Values<TypeParam>::first());
    EXPECT_THAT(this->accepted, IsEmpty());
}

TYPED_TEST(EachValueProperty, WritableAgainAcceptsValuesAgain) {
    this->property.setIsWritable(false);
    this->property.setIsWritable(true);
    this->property.set(Values<TypeParam>::second());
    EXPECT_EQ(this->property.get(), Values<TypeParam>::second());
}

TYPED_TEST(EachValueProperty, ObserverHearsOfChangesOnly) {
    CountingObserver observer;
    this->property.addObserver(observer);
    this->property.set(Values<TypeParam>::first());
    EXPECT_EQ(observer.values, 0);
    this->property.set(Values<TypeParam>::second());
    EXPECT_EQ(observer.values, 1);
    this->property.set(Values<TypeParam>::second());
    EXPECT_EQ(observer.values, 1);
    EXPECT_EQ(observer.attributes, 0);
}

TYPED_TEST(EachValueProperty, FlagsAreAttributesOnTheirOwn) {
    CountingObserver observer;
    this->property.addObserver(observer);
    this->property.setIsPersistent(false);
    EXPECT_FALSE(this->property.getIsPersistent());
    EXPECT_TRUE(this->property.getIsWritable());
    EXPECT_EQ(observer.attributes, 1);
    this->property.setIsWritable(false);
    EXPECT_FALSE(this->property.getIsWritable());
    EXPECT_EQ(observer.attributes, 2);
    EXPECT_EQ(observer.values, 0);
}

TYPED_TEST(EachValueProperty, AnyHoldsAPointerToTheStoredValue) {
    const auto* pointer = Poco::AnyCast<const TypeParam*>(this->property.getAny());
    EXPECT_EQ(*pointer, Values<TypeParam>::first());
    this->property.set(Values<TypeParam>::second());
    EXPECT_EQ(*pointer, Values<TypeParam>::second());
    EXPECT_EQ(Poco::AnyCast<const TypeParam*>(this->property.getAny()), pointer);
}

TYPED_TEST(EachValueProperty, SetFromAnyOfItsTypeGoesThroughTheSetter) {
    this->property.attach(*this, &EachValueProperty<TypeParam>::accept);
    this->property.setAny(Poco::Any(Values<TypeParam>::second()));
    EXPECT_EQ(this->property.get(), Values<TypeParam>::second());
    EXPECT_EQ(this->accepted.size(), 1U);
}

TYPED_TEST(EachValueProperty, SetFromAnyOfAnotherTypeIsABadCast) {
    EXPECT_THROW(this->property.setAny(Poco::Any('x')), Poco::BadCastException);
    EXPECT_THROW(this->property.setAny(Poco::Any(static_cast<const TypeParam*>(nullptr))),
                 Poco::BadCastException);
    EXPECT_THROW(this->property.setAny(Poco::Any()), Poco::BadCastException);
    EXPECT_EQ(this->property.get(), Values<TypeParam>::first());
}

TYPED_TEST(EachValueProperty, ItsTextSetsItAgain) {
    std::string text = "overwritten";
    this->property.serialize(text);
    this->property.set(Values<TypeParam>::second());
    this->property.deSerialize(text);
    EXPECT_EQ(this->property.get(), Values<TypeParam>::first());
}

TYPED_TEST(EachValueProperty, EmptyAndBlankTextIsRefused) {
    EXPECT_THROW(this->property.deSerialize(""), Poco::DataFormatException);
    EXPECT_THROW(this->property.deSerialize(" \t\n"), Poco::DataFormatException);
    EXPECT_EQ(this->property.get(), Values<TypeParam>::first());
}

// --- The order of a setter's steps ----------------------------------------------------------

std::vector<std::string>& steps() {
    static std::vector<std::string> list;
    return list;
}

/// A value that notes when it is compared and stored.
struct Traced {
    int number = 0;

    Traced() = default;
    explicit Traced(int n) : number(n) {}
    Traced(const Traced&) = default;
    Traced& operator=(const Traced& other) {
        number = other.number;
        steps().push_back("store " + std::to_string(number));
        return *this;
    }
    bool operator!=(const Traced& other) const {
        steps().push_back("compare");
        return number != other.number;
    }
    friend std::ostream& operator<<(std::ostream& stream, const Traced& /*value*/) {
        stream.setstate(std::ios::badbit);
        return stream;
    }
    friend std::istream& operator>>(std::istream& stream, Traced& value) {
        return stream >> value.number;
    }
};

class TracedProperty : public ValueProperty<Traced> {
 public:
    using ValueProperty<Traced>::ValueProperty;
    void validate(const Traced& value) const override {
        steps().push_back("validate " + std::to_string(value.number));
        ValueProperty<Traced>::validate(value);
    }
};

class SetterOrder : public testing::Test, public PropertyObserver {
 public:
    SetterOrder() { steps().clear(); }

    void typed(const Traced& value) {
        note("typed callback " + std::to_string(value.number));
        if (refuses) throw Poco::InvalidArgumentException("no");
    }
    void plain() {
        note("plain callback");
        if (plainThrows) throw std::runtime_error("after the store");
    }
    void valueChanged(const AbstractProperty& /*changed*/) override { note("observer"); }
    void attributeChanged(const AbstractProperty& /*changed*/) override { note("attribute"); }

    void note(const std::string& what) {
        steps().push_back(what + ", stored " + std::to_string(stored(property).number));
    }

    BagOwner owner;
    TracedProperty property{"Traced", owner.getPropertyBag(), Traced(1)};
    bool refuses = false;
    bool plainThrows = false;
};

TEST_F(SetterOrder, IsValidateTypedCallbackCompareStorePlainCallbackObservers) {
    property.attach(*this, &SetterOrder::typed);
    property.attach(*this, &SetterOrder::plain);
    property.addObserver(*this);
    property.set(Traced(2));
    EXPECT_THAT(steps(), ElementsAre("validate 2", "typed callback 2, stored 1", "compare",
                                     "store 2", "plain callback, stored 2", "observer, stored 2"));
}

TEST_F(SetterOrder, EqualValueIsStoredWithoutNotice) {
    property.attach(*this, &SetterOrder::typed);
    property.attach(*this, &SetterOrder::plain);
    property.addObserver(*this);
    property.set(Traced(1));
    EXPECT_THAT(steps(),
                ElementsAre("validate 1", "typed callback 1, stored 1", "compare", "store 1"));
}

TEST_F(SetterOrder, NothingIsComparedWhileNobodyWatches) {
    property.set(Traced(2));
    EXPECT_THAT(steps(), ElementsAre("validate 2", "store 2"));
}

TEST_F(SetterOrder, TypedCallbackIsNoWatcher) {
    property.attach(*this, &SetterOrder::typed);
    property.set(Traced(2));
    EXPECT_THAT(steps(), ElementsAre("validate 2", "typed callback 2, stored 1", "store 2"));
}

TEST_F(SetterOrder, PlainCallbackAloneWatches) {
    property.attach(*this, &SetterOrder::plain);
    property.set(Traced(2));
    EXPECT_THAT(steps(),
                ElementsAre("validate 2", "compare", "store 2", "plain callback, stored 2"));
}

TEST_F(SetterOrder, RemovedObserverNoLongerWatches) {
    property.addObserver(*this);
    property.removeObserver(*this);
    property.set(Traced(2));
    EXPECT_THAT(steps(), ElementsAre("validate 2", "store 2"));
}

TEST_F(SetterOrder, TextIsSetByTheSameSteps) {
    property.addObserver(*this);
    property.deSerialize("2");
    EXPECT_THAT(steps(), ElementsAre("validate 2", "compare", "store 2", "observer, stored 2"));
}

TEST_F(SetterOrder, RefusingCallbackLeavesTheValueAndNotifiesNobody) {
    property.attach(*this, &SetterOrder::typed);
    property.attach(*this, &SetterOrder::plain);
    property.addObserver(*this);
    refuses = true;
    expectThrow<Poco::InvalidArgumentException>("no", [&] { property.set(Traced(2)); });
    EXPECT_THAT(steps(), ElementsAre("validate 2", "typed callback 2, stored 1"));
    refuses = false;
    property.set(Traced(3));
    EXPECT_EQ(stored(property).number, 3);
}

TEST_F(SetterOrder, ThrowingPlainCallbackReachesTheCallerAfterTheStore) {
    property.attach(*this, &SetterOrder::plain);
    plainThrows = true;
    EXPECT_THROW(property.set(Traced(2)), std::runtime_error);
    EXPECT_EQ(stored(property).number, 2);
    // The lock is free again: another thread gets in.
    plainThrows = false;
    std::thread([&] { property.set(Traced(3)); }).join();
    EXPECT_EQ(stored(property).number, 3);
}

TEST_F(SetterOrder, ReadOnlyIsFoundOutBeforeTheTypedCallback) {
    property.attach(*this, &SetterOrder::typed);
    property.setIsWritable(false);
    expectThrow<Poco::NoPermissionException>("Property 'Traced' is not writable",
                                             [&] { property.set(Traced(2)); });
    EXPECT_THAT(steps(), ElementsAre("validate 2"));
}

TEST_F(SetterOrder, ValueThatCannotBeWrittenAsTextIsADataFormatError) {
    std::string text = "as before";
    EXPECT_THROW(property.serialize(text), Poco::DataFormatException);
    EXPECT_EQ(text, "as before");
}

TEST(ValueProperty, NanCountsAsChangedEveryTime) {
    BagOwner owner;
    ValueProperty<double> property("Freq", owner.getPropertyBag());
    CountingObserver observer;
    property.addObserver(observer);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    property.set(nan);
    property.set(nan);
    EXPECT_EQ(observer.values, 2);
    property.set(-0.0);
    property.set(0.0);
    EXPECT_EQ(observer.values, 3) << "zeros of both signs are equal";
}

// --- Callbacks ------------------------------------------------------------------------------

class Replacing : public testing::Test {
 public:
    void replaceTyped(const bool& value) {
        property.attach(*this, &Replacing::typedAfterwards);
        // Uses the object behind the running callback after its replacement.
        calls.push_back(value ? "first, true" : "first, false");
    }
    void typedAfterwards(const bool& value) {
        calls.push_back(value ? "second, true" : "second, false");
    }
    void replacePlain() {
        property.attach(*this, &Replacing::plainAfterwards);
        calls.emplace_back("first");
    }
    void plainAfterwards() { calls.emplace_back("second"); }
    void setOther(const bool& value) {
        EXPECT_NE(property.get(), value) << "the own property still has the old value";
        other.set(value ? 1 : 0);
        EXPECT_EQ(other.get(), value ? 1 : 0);
    }

    BagOwner owner;
    ValueProperty<bool> property{"Record", owner.getPropertyBag()};
    ValueProperty<int> other{"Count", owner.getPropertyBag(), -1};
    std::vector<std::string> calls;
};

TEST_F(Replacing, TypedCallbackMayReplaceItself) {
    property.attach(*this, &Replacing::replaceTyped);
    property.set(true);
    property.set(false);
    EXPECT_THAT(calls, ElementsAre("first, true", "second, false"));
}

TEST_F(Replacing, PlainCallbackMayReplaceItself) {
    property.attach(*this, &Replacing::replacePlain);
    property.set(true);
    property.set(false);
    EXPECT_THAT(calls, ElementsAre("first", "second"));
}

TEST_F(Replacing, TypedCallbackMaySetOtherPropertiesUnderTheSameLock) {
    property.attach(*this, &Replacing::setOther);
    property.set(true);
    EXPECT_EQ(other.get(), 1);
}

TEST(ValueProperty, SettersOfTwoThreadsExcludeEachOtherWithTheirCallbacks) {
    constexpr int kSets = 2000;
    struct Counter {
        void count(const int& /*value*/) { ++calls; }
        int calls = 0;
    };
    BagOwner owner;
    ValueProperty<int> property("Count", owner.getPropertyBag());
    ValueProperty<int> sibling("Sibling", owner.getPropertyBag());
    Counter counter;
    property.attach(counter, &Counter::count);
    sibling.attach(counter, &Counter::count);
    const auto setAll = [&](ValueProperty<int>& target) {
        std::string text;
        for (int i = 0; i < kSets; ++i) {
            target.set(i);
            target.serialize(text);
        }
    };
    std::thread first(setAll, std::ref(property));
    std::thread second(setAll, std::ref(sibling));
    first.join();
    second.join();
    EXPECT_EQ(counter.calls, 2 * kSets);
}

TEST(ValueProperty, WithoutABagWorksUnlocked) {
    ValueProperty<int> property("Alone", nullptr, 3);
    EXPECT_EQ(property.getSynchronizer(), nullptr);
    property.set(4);
    EXPECT_EQ(property.get(), 4);
}

}  // namespace
}  // namespace Quoril::Core
