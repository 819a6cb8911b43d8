#include "framework/CommandProperty.hpp"
#include "framework/EnumProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/RangeProperty.hpp"

#include <string>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

template <class Property>
using Visit = Util::System::Visitor<Property, void, void, 1>;

/// Knows every class of property and notes which visit was chosen.
class Everything : public Visit<ValueProperty<bool>>,
                   public Visit<ValueProperty<int>>,
                   public Visit<ValueProperty<unsigned int>>,
                   public Visit<ValueProperty<short>>,
                   public Visit<ValueProperty<double>>,
                   public Visit<ValueProperty<std::string>>,
                   public Visit<RangeProperty<int>>,
                   public Visit<EnumProperty<std::string>>,
                   public Visit<StringProperty>,
                   public Visit<FileNameProperty>,
                   public Visit<CommandProperty> {
 public:
    void visit(const ValueProperty<bool>& object) override { note("bool", object); }
    void visit(const ValueProperty<int>& object) override { note("int", object); }
    void visit(const ValueProperty<unsigned int>& object) override { note("unsigned", object); }
    void visit(const ValueProperty<short>& object) override { note("short", object); }
    void visit(const ValueProperty<double>& object) override { note("double", object); }
    void visit(const ValueProperty<std::string>& object) override { note("text", object); }
    void visit(const RangeProperty<int>& object) override { note("range", object); }
    void visit(const EnumProperty<std::string>& object) override { note("enum", object); }
    void visit(const StringProperty& object) override { note("string", object); }
    void visit(const FileNameProperty& object) override { note("file name", object); }
    void visit(const CommandProperty& object) override { note("command", object); }

    void note(const std::string& which, const AbstractProperty& object) {
        EXPECT_EQ(chosen, "") << "one visit an object";
        chosen = which;
        visited = &object;
    }

    std::string chosen;
    const AbstractProperty* visited = nullptr;
};

std::string visitChosenBy(const AbstractProperty& property) {
    Everything visitor;
    property.accept(visitor);
    EXPECT_EQ(visitor.visited, &property);
    return visitor.chosen;
}

TEST(Visitor, IsVisitedByTheExactClass) {
    EXPECT_EQ(visitChosenBy(ValueProperty<bool>("p", nullptr)), "bool");
    EXPECT_EQ(visitChosenBy(ValueProperty<int>("p", nullptr)), "int");
    EXPECT_EQ(visitChosenBy(ValueProperty<unsigned int>("p", nullptr)), "unsigned");
    EXPECT_EQ(visitChosenBy(ValueProperty<short>("p", nullptr)), "short");
    EXPECT_EQ(visitChosenBy(ValueProperty<double>("p", nullptr)), "double");
    EXPECT_EQ(visitChosenBy(ValueProperty<std::string>("p", nullptr)), "text");
    EXPECT_EQ(visitChosenBy(RangeProperty<int>("p", nullptr)), "range");
    EXPECT_EQ(visitChosenBy(EnumProperty<std::string>("p", nullptr)), "enum");
    EXPECT_EQ(visitChosenBy(StringProperty("p", nullptr)), "string");
    EXPECT_EQ(visitChosenBy(FileNameProperty("p", nullptr)), "file name");
    EXPECT_EQ(visitChosenBy(CommandProperty("p", nullptr)), "command");
}

template <class Known>
class Knowing : public Visit<Known> {
 public:
    void visit(const Known& /*object*/) override { ++visits; }
    int visits = 0;
};

template <class Known>
int visitsOf(const AbstractProperty& property) {
    Knowing<Known> visitor;
    property.accept(visitor);
    return visitor.visits;
}

TEST(Visitor, OfABaseClassDoesNotVisitTheDerivedOne) {
    EXPECT_EQ(visitsOf<ValueProperty<int>>(RangeProperty<int>("p", nullptr)), 0);
    EXPECT_EQ(visitsOf<ValueProperty<unsigned int>>(EnumProperty<std::string>("p", nullptr)), 0);
    EXPECT_EQ(visitsOf<StringProperty>(FileNameProperty("p", nullptr)), 0);
    EXPECT_EQ(visitsOf<ValueProperty<std::string>>(FileNameProperty("p", nullptr)), 0);
}

TEST(Visitor, ThatKnowsNothingOfThePropertyIsLeftAlone) {
    EXPECT_EQ(visitsOf<ValueProperty<bool>>(ValueProperty<int>("p", nullptr)), 0);
    EXPECT_EQ(visitsOf<RangeProperty<int>>(ValueProperty<int>("p", nullptr)), 0);
    EXPECT_EQ(visitsOf<RangeProperty<int>>(CommandProperty("p", nullptr)), 0);
    class Ignorant : public Util::System::AbstractVisitor {
    } ignorant;
    EXPECT_NO_THROW(ValueProperty<int>("p", nullptr).accept(ignorant));
}

}  // namespace
}  // namespace Quoril::Core
