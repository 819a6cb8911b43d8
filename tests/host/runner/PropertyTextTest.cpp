#include "framework/CommandProperty.hpp"
#include "framework/EnumProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/RangeProperty.hpp"
#include "framework/StringProperty.hpp"
#include "host/runner/PropertyText.hpp"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

using namespace Quoril::Core;

template <class Property>
std::string refusalOf(Property& property, const std::string& text) {
    try {
        setFromText(property, text);
        return "accepted";
    } catch (const Poco::DataFormatException& error) {
        return error.message();
    }
}

TEST(PropertyText, BooleansAreWrittenInBothForms) {
    ValueProperty<bool> property("Binary", nullptr);
    for (const auto& [text, value] :
         {std::pair{"true", true}, {"false", false}, {"1", true}, {"0", false}, {"True", true}}) {
        setFromText(property, text);
        EXPECT_EQ(property.get(), value) << text;
    }
    for (const char* text : {"yes", "no", "2", "", " true"})
        EXPECT_EQ(refusalOf(property, text), "'" + std::string(text) + "' is not true or false");
}

TEST(PropertyText, NumbersMustBeNothingButANumber) {
    ValueProperty<double> property("Freq", nullptr);
    setFromText(property, "819.23456789012");
    EXPECT_EQ(property.get(), 819.23456789012);
    setFromText(property, "+2e-3");
    EXPECT_EQ(property.get(), 0.002);
    for (const char* text : {"200,5", "12abc", "", "nan", "inf", "1e999", "0x10", "+-1"})
        EXPECT_EQ(refusalOf(property, text),
                  "'" + std::string(text) + "' is not a number such as -1.5 or 2e-3");
}

TEST(PropertyText, WholeNumbersMustFitTheirKind) {
    ValueProperty<int> integer("i", nullptr);
    setFromText(integer, "-2147483648");
    EXPECT_EQ(integer.get(), -2147483647 - 1);
    EXPECT_EQ(refusalOf(integer, "2147483648"),
              "'2147483648' is not a whole number from -2147483648 to 2147483647");
    EXPECT_EQ(refusalOf(integer, "1.0"),
              "'1.0' is not a whole number from -2147483648 to 2147483647");
    ValueProperty<unsigned> unsignedOne("u", nullptr);
    setFromText(unsignedOne, "4294967295");
    EXPECT_EQ(unsignedOne.get(), 4294967295U);
    EXPECT_EQ(refusalOf(unsignedOne, "-1"), "'-1' is not a whole number from 0 to 4294967295");
    ValueProperty<short> shortOne("s", nullptr);
    setFromText(shortOne, "+7");
    EXPECT_EQ(shortOne.get(), 7);
    EXPECT_EQ(refusalOf(shortOne, "32768"), "'32768' is not a whole number from -32768 to 32767");
}

TEST(PropertyText, RangesAreTestedBeforeTheProperty) {
    RangeProperty<int> property("Pins Number", nullptr);
    property.setRange(0, 20, 1);
    setFromText(property, "20");
    EXPECT_EQ(property.get(), 20);
    EXPECT_EQ(refusalOf(property, "21"), "'21' is not a whole number from 0 to 20");
}

TEST(PropertyText, ChoicesAreWrittenAsEntryOrIndex) {
    EnumProperty<std::string> property("ColTypes#1", nullptr);
    property.setEntries({"UCHAR", "INT16", "1"});
    setFromText(property, "INT16");
    EXPECT_EQ(property.get(), 1U);
    setFromText(property, "0");
    EXPECT_EQ(property.get(), 0U);
    // An entry that looks like an index is an entry.
    setFromText(property, "1");
    EXPECT_EQ(property.get(), 2U);
    EXPECT_EQ(refusalOf(property, "INT61"),
              "'INT61' is not one of the choices; did you mean 'INT16'?");
    EXPECT_EQ(refusalOf(property, "3"), "'3' is not one of the choices; did you mean '1'?");
    EXPECT_EQ(refusalOf(property, "DOUBLE"),
              "'DOUBLE' is not one of the choices; there are 'UCHAR', 'INT16', '1'");
}

TEST(PropertyText, AChoiceWithoutEntriesTakesAnyIndex) {
    EnumProperty<std::string> property("e", nullptr);
    setFromText(property, "12");
    EXPECT_EQ(property.get(), 12U);
}

TEST(PropertyText, TextsAreTakenAsTheyAre) {
    StringProperty text("t", nullptr);
    setFromText(text, " a, b ");
    EXPECT_EQ(text.get(), " a, b ");
    FileNameProperty file("f", nullptr);
    setFromText(file, "$HOME/x");
    EXPECT_EQ(describeProperty(file).value, "$HOME/x");
}

TEST(PropertyText, CommandsHaveNoValue) {
    CommandProperty command("Save", nullptr);
    EXPECT_EQ(refusalOf(command, "1"), "'Save' is a command, which has no value");
}

TEST(PropertyText, ReadOnlyPropertiesRefuse) {
    ValueProperty<int> property("n", nullptr);
    property.setIsWritable(false);
    EXPECT_THROW(setFromText(property, "1"), Poco::NoPermissionException);
}

TEST(PropertyText, DescriptionHoldsWhatTheKindHas) {
    RangeProperty<int> range("Pins Number", nullptr, 3);
    range.setRange(0, 20, 1);
    range.setIsWritable(false);
    const PropertyDescription ofRange = describeProperty(range);
    EXPECT_STREQ(toText(ofRange.kind), "integer range");
    EXPECT_EQ(ofRange.name, "Pins Number");
    EXPECT_EQ(ofRange.value, "3");
    ASSERT_TRUE(ofRange.range);
    EXPECT_EQ(ofRange.range->maximum, 20);
    EXPECT_EQ(ofRange.range->step, 1);
    EXPECT_FALSE(ofRange.isWritable);
    EXPECT_TRUE(ofRange.isPersistent);

    EnumProperty<std::string> choice("Mode", nullptr, 1);
    EXPECT_EQ(describeProperty(choice).value, "1");
    choice.setEntries({"a", "b"});
    EXPECT_EQ(describeProperty(choice).value, "b");

    FileNameProperty file("File Name", nullptr);
    file.setHints(false, false, true);
    EXPECT_TRUE(describeProperty(file).isWrittenFile);

    ValueProperty<bool> replay("Replay", nullptr);
    replay.setIsPersistent(false);
    EXPECT_FALSE(describeProperty(replay).isPersistent);
    EXPECT_EQ(describeProperty(replay).value, "false");
}

TEST(PropertyText, EachKindHasItsName) {
    EXPECT_STREQ(toText(describeProperty(ValueProperty<bool>("x", nullptr)).kind), "boolean");
    EXPECT_STREQ(toText(describeProperty(ValueProperty<int>("x", nullptr)).kind), "integer");
    EXPECT_STREQ(toText(describeProperty(ValueProperty<unsigned>("x", nullptr)).kind),
                 "unsigned integer");
    EXPECT_STREQ(toText(describeProperty(ValueProperty<short>("x", nullptr)).kind),
                 "short integer");
    EXPECT_STREQ(toText(describeProperty(ValueProperty<double>("x", nullptr)).kind), "number");
    EXPECT_STREQ(toText(describeProperty(ValueProperty<std::string>("x", nullptr)).kind), "text");
    EXPECT_STREQ(toText(describeProperty(StringProperty("x", nullptr)).kind), "text");
    EXPECT_STREQ(toText(describeProperty(FileNameProperty("x", nullptr)).kind), "file name");
    EXPECT_STREQ(toText(describeProperty(EnumProperty<std::string>("x", nullptr)).kind), "choice");
    EXPECT_STREQ(toText(describeProperty(CommandProperty("x", nullptr)).kind), "command");
}

TEST(PropertyText, ValuesAreComparedByMeaning) {
    ValueProperty<double> number("n", nullptr, 200.0);
    EXPECT_TRUE(hasValue(number, "200"));
    EXPECT_TRUE(hasValue(number, "2e2"));
    EXPECT_FALSE(hasValue(number, "200.0000001"));
    ValueProperty<bool> boolean("b", nullptr, true);
    EXPECT_TRUE(hasValue(boolean, "1"));
    EXPECT_TRUE(hasValue(boolean, "true"));
    EXPECT_FALSE(hasValue(boolean, "false"));
    EnumProperty<std::string> choice("c", nullptr, 1);
    choice.setEntries({"a", "b"});
    EXPECT_TRUE(hasValue(choice, "b"));
    EXPECT_TRUE(hasValue(choice, "1"));
    EXPECT_FALSE(hasValue(choice, "a"));
}

}  // namespace
}  // namespace Quoril::Runner
