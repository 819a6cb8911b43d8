#include "framework/CommandProperty.hpp"
#include "framework/EnumProperty.hpp"
#include "framework/RangeProperty.hpp"
#include "host/runner/PropertyText.hpp"
#include "tests/flows/EveryFilterFixture.hpp"

#include <climits>

// Values that no user should give: a property takes a value or refuses it and keeps its own, and
// the filter works on.

using Quoril::Core::AbstractProperty;
using Quoril::Core::Filter;
using Quoril::Runner::PropertyKind;

namespace {

std::vector<std::string> oddTexts() {
    using namespace std::string_literals;
    return {"",
            " ",
            "\t\n",
            "0",
            "1",
            "2",
            "-1",
            "20",
            "21",
            "1000",
            "32767",
            "32768",
            "2147483647",
            "-2147483648",
            "4294967295",
            "99999999999999999999",
            "nan",
            "-inf",
            "1e308",
            "1e999",
            "true",
            "12abc",
            "#1",
            ";, ;",
            "a;;b, c",
            "$",
            "${",
            "${NOT_SET_AT_ALL}",
            "nowhere/at/all",
            "nowhere/",
            ".",
            "~nobody/x",
            "\xFF\xFE\x01",
            "zero\0byte"s,
            std::string(300, 'n'),
            std::string(100000, 'n'),
            std::string(100000, ';')};
}

std::string textOf(const AbstractProperty& property) {
    std::string text;
    property.serialize(text);
    return text;
}

bool isCommand(const AbstractProperty& property) {
    return Quoril::Runner::describeProperty(property).kind == PropertyKind::kCommand;
}

}  // namespace

class OddValuesTest : public EveryFilterFixture {
 protected:
    /// A filter of its own, set up and perhaps switched on; the one before is gone.
    Filter& makeFilter(bool isOn) {
        if (Filter* old = flow.findFilter("filter")) flow.removeFilter(*old);
        Filter& filter = addFilter(layout);
        prepare(filter);
        if (isOn) switchOn(filter);
        return filter;
    }

    std::vector<std::string> namesOf(bool isOn) {
        return Harness(makeFilter(isOn)).propertyNames();
    }

    static void pushAndStep(Filter& filter) {
        Harness harness(filter);
        for (const std::string& pin : harness.inputNames())
            harness.push(pin, Eigen::MatrixXd::Ones(1, 3));
        EXPECT_NO_THROW(harness.step(3));
    }

    /// Gives a property a value by `set`; what it refuses changes nothing.
    template <class Set>
    void give(const std::string& name, bool isOn, const Set& set) {
        Filter& filter = makeFilter(isOn);
        AbstractProperty& property = Harness(filter).property(name);
        if (isCommand(property)) return;
        const std::string before = textOf(property);
        const bool wasWritable = property.getIsWritable();
        if (accepts([&] { set(property); })) {
            EXPECT_TRUE(wasWritable);
        } else {
            EXPECT_EQ(textOf(property), before);
        }
        accepts([&] { switchOn(filter); });
        pushAndStep(filter);
        accepts([&] { switchOff(filter); });
        pushAndStep(filter);
    }

    Quoril::Core::LayoutManager& layout = flow.addLayout("main");
};

TEST_P(OddValuesTest, TextIsTakenOrRefused) {
    for (const bool isOn : {false, true})
        for (const std::string& name : namesOf(isOn)) {
            // What is locked refuses one text like another.
            const bool isLocked = !Harness(makeFilter(isOn)).isWritable(name);
            const auto texts = isLocked ? std::vector<std::string>{"1"} : oddTexts();
            for (const std::string& text : texts) {
                SCOPED_TRACE(name + (isOn ? " (on): " : ": ") + text.substr(0, 40));
                give(name, isOn, [&](const AbstractProperty& p) { p.deSerialize(text); });
            }
        }
}

TEST_P(OddValuesTest, ValuesOfOtherTypesAreRefused) {
    for (const std::string& name : namesOf(/*isOn=*/false)) {
        SCOPED_TRACE(name);
        give(name, false, [](AbstractProperty& p) {
            p.setAny(std::vector<int>{1});
            ADD_FAILURE() << "accepted";
        });
    }
}

TEST_P(OddValuesTest, RangesAndChoicesEndWhereTheyEnd) {
    for (const std::string& name : namesOf(/*isOn=*/false)) {
        SCOPED_TRACE(name);
        AbstractProperty& property = Harness(makeFilter(false)).property(name);
        if (!property.getIsWritable()) continue;
        const auto takes = [&](const auto& value) {
            return accepts([&] { property.setAny(value); });
        };
        const PropertyKind kind = Quoril::Runner::describeProperty(property).kind;
        if (kind == PropertyKind::kRange) {
            const auto& range = dynamic_cast<Quoril::Core::RangeProperty<int>&>(property);
            const int minimum = range.getMinimum();
            const int maximum = range.getMaximum();
            EXPECT_TRUE(takes(minimum));
            EXPECT_TRUE(takes(maximum));
            for (const int beyond : {minimum - 1, maximum + 1, INT_MIN, INT_MAX})
                EXPECT_FALSE(takes(beyond)) << beyond;
            EXPECT_EQ(range.get(), maximum);
        }
        if (kind == PropertyKind::kChoice) {
            const auto& choice = dynamic_cast<Quoril::Core::EnumProperty<std::string>&>(property);
            const auto count = static_cast<unsigned>(choice.getEntries().size());
            for (unsigned i = 0; i < count; ++i)
                EXPECT_TRUE(takes(i));
            EXPECT_FALSE(takes(count));
            EXPECT_FALSE(takes(UINT_MAX));
            EXPECT_EQ(choice.get(), count - 1);
        }
    }
}

TEST_P(OddValuesTest, CommandsWorkAtAnyTime) {
    for (const bool isPrepared : {false, true}) {
        Filter& filter = isPrepared ? makeFilter(true) : addFilter(layout);
        for (const std::string& name : Harness(filter).propertyNames()) {
            if (!isCommand(Harness(filter).property(name))) continue;
            for (int i = 0; i < 3; ++i)
                accepts([&] { Harness(filter).trigger(name); });
        }
        pushAndStep(filter);
        if (!isPrepared) flow.removeFilter(filter);
    }
}

INSTANTIATE_FOR_EVERY_FILTER(OddValuesTest);
