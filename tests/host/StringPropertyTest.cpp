#include "framework/FileNameProperty.hpp"
#include "framework/StringProperty.hpp"
#include "tests/host/PropertyFixture.hpp"

#include <Poco/Environment.h>
#include <Poco/Exception.h>
#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;

class StringPropertyTest : public ::testing::Test {
 protected:
    void attachText() { text_.attach(*this, &StringPropertyTest::onText); }
    void onText(const std::string& value) {
        events_.push_back(value + " over " + text_.get());
        if (value == "bad") throw Poco::InvalidArgumentException("refused");
    }
    static std::string textOf(const AbstractProperty& property) {
        std::string text;
        property.serialize(text);
        return text;
    }

    TestOwner owner_;
    StringProperty text_{"Text", owner_.getPropertyBag()};
    FileNameProperty file_{"File Name", owner_.getPropertyBag()};
    std::vector<std::string> events_;
};

TEST_F(StringPropertyTest, TextIsSavedAndRestoredWhole) {
    text_.deSerialize("  a b\tc\nd ");
    EXPECT_EQ(text_.get(), "  a b\tc\nd ");
    EXPECT_EQ(textOf(text_), "  a b\tc\nd ");
    text_.deSerialize("");
    EXPECT_EQ(text_.get(), "");
}

TEST_F(StringPropertyTest, VariablesAreExpandedOnReadingAndSavedAsTyped) {
    Poco::Environment::set("QUORIL_TEST_FOLDER", "/data");
    file_.set("$QUORIL_TEST_FOLDER/a${QUORIL_TEST_FOLDER}.csv");
    EXPECT_EQ(file_.get(), "/data/a/data.csv");
    EXPECT_EQ(textOf(file_), "$QUORIL_TEST_FOLDER/a${QUORIL_TEST_FOLDER}.csv");
}

TEST_F(StringPropertyTest, PlainTextIsNotExpandedUnlessAsked) {
    Poco::Environment::set("QUORIL_TEST_FOLDER", "/data");
    text_.set("$QUORIL_TEST_FOLDER");
    EXPECT_EQ(text_.get(), "$QUORIL_TEST_FOLDER");
    text_.setExpandVariables(true);
    EXPECT_EQ(text_.get(), "/data");
}

TEST_F(StringPropertyTest, ValidationIsTheWritableTestThenTheCallback) {
    attachText();
    text_.set("good");
    EXPECT_THROW(text_.set("bad"), Poco::InvalidArgumentException);
    EXPECT_EQ(text_.get(), "good");
    text_.setIsWritable(false);
    try {
        text_.deSerialize("late");
        FAIL();
    } catch (const Poco::NoPermissionException& error) {
        EXPECT_EQ(error.message(), "Property 'Text' is not writable");
    }
    EXPECT_THAT(events_, ElementsAre("good over ", "bad over good"));
}

template <class T>
struct CountingVisitor final : Util::System::Visitor<T, void, void, 1> {
    void visit(const T& /*object*/) override { ++visits; }
    int visits = 0;
};

TEST_F(StringPropertyTest, VisitorOfTheExactClassIsServed) {
    CountingVisitor<StringProperty> strings;
    CountingVisitor<FileNameProperty> files;
    CountingVisitor<ValueProperty<std::string>> values;
    for (AbstractProperty* property :
         {static_cast<AbstractProperty*>(&text_), static_cast<AbstractProperty*>(&file_)}) {
        property->accept(strings);
        property->accept(files);
        property->accept(values);
    }
    EXPECT_EQ(strings.visits, 1);
    EXPECT_EQ(files.visits, 1);
    EXPECT_EQ(values.visits, 1);  // a text is also served as a plain value, a file name is not
}

TEST_F(StringPropertyTest, FileNameTellsObserversOfItsHints) {
    RecordingObserver observer(events_);
    file_.addObserver(observer);
    EXPECT_EQ(file_.getFilter(), "*");
    EXPECT_FALSE(file_.getMustExist() || file_.getIsFolder() || file_.getIsWritten());
    file_.setFilter("*.csv");
    file_.setHints(true, false, true);
    EXPECT_EQ(file_.getFilter(), "*.csv");
    EXPECT_TRUE(file_.getMustExist() && !file_.getIsFolder() && file_.getIsWritten());
    EXPECT_THAT(events_, ElementsAre("attribute File Name", "attribute File Name"));
}

}  // namespace
}  // namespace Quoril::Core
