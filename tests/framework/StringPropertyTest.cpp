#include "framework/FileNameProperty.hpp"
#include "framework/StringProperty.hpp"
#include "tests/framework/TestSupport.hpp"
#include "tests/support/ExpectThrow.hpp"

#include <vector>

#include <Poco/Environment.h>
#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using FrameworkTest::BagOwner;
using FrameworkTest::CountingObserver;
using Support::expectThrow;
using testing::ElementsAre;
using testing::IsEmpty;

class StringPropertyTest : public testing::Test {
 public:
    StringPropertyTest() { Poco::Environment::set("QUORIL_TEST_FOLDER", "/data"); }
    void see(const std::string& value) { seen.push_back(value); }

    BagOwner owner;
    StringProperty text{"Columns", owner.getPropertyBag()};
    FileNameProperty file{"File Name", owner.getPropertyBag()};
    std::vector<std::string> seen;
};

TEST_F(StringPropertyTest, WholeTextIsSavedAndRestored) {
    for (const std::string value : {"ACCX;ACCY ACCZ", "", "  blanks  ", "line\nbreak"}) {
        std::string saved = "overwritten";
        text.set(value);
        text.serialize(saved);
        EXPECT_EQ(saved, value);
        text.set("other");
        text.deSerialize(saved);
        EXPECT_EQ(text.get(), value);
    }
}

TEST_F(StringPropertyTest, TypedCallbackSeesTheRawText) {
    file.attach(*this, &StringPropertyTest::see);
    file.set("${QUORIL_TEST_FOLDER}/imu.sns");
    EXPECT_THAT(seen, ElementsAre("${QUORIL_TEST_FOLDER}/imu.sns"));
}

TEST_F(StringPropertyTest, FileNamesExpandVariablesWhereReadAndKeepThemWhereSaved) {
    file.set("${QUORIL_TEST_FOLDER}/imu.sns");
    EXPECT_EQ(file.get(), "/data/imu.sns");
    std::string saved;
    file.serialize(saved);
    EXPECT_EQ(saved, "${QUORIL_TEST_FOLDER}/imu.sns");
    file.setExpandVariables(false);
    EXPECT_EQ(file.get(), "${QUORIL_TEST_FOLDER}/imu.sns");
}

TEST_F(StringPropertyTest, PlainTextsExpandNothingUnlessAsked) {
    text.set("$QUORIL_TEST_FOLDER");
    EXPECT_FALSE(text.getExpandVariables());
    EXPECT_EQ(text.get(), "$QUORIL_TEST_FOLDER");
    text.setExpandVariables(true);
    EXPECT_EQ(text.get(), "/data");
}

TEST_F(StringPropertyTest, ReadOnlyIsRefusedBeforeTheCallback) {
    file.attach(*this, &StringPropertyTest::see);
    file.setIsWritable(false);
    expectThrow<Poco::NoPermissionException>("Property 'File Name' is not writable",
                                             [&] { file.set("x"); });
    expectThrow<Poco::NoPermissionException>("Property 'File Name' is not writable",
                                             [&] { file.deSerialize("x"); });
    EXPECT_THAT(seen, IsEmpty());
    EXPECT_EQ(file.get(), "");
}

TEST_F(StringPropertyTest, FreshFileNameShowsAllFilesAndNoHints) {
    EXPECT_TRUE(file.getExpandVariables());
    EXPECT_EQ(file.getFilter(), "*");
    EXPECT_FALSE(file.getMustExist());
    EXPECT_FALSE(file.getIsFolder());
    EXPECT_FALSE(file.getIsWritten());
}

TEST_F(StringPropertyTest, FilterAndHintsAreAttributes) {
    CountingObserver observer;
    file.addObserver(observer);
    file.setFilter("*.sns");
    file.setHints(/*mustExist=*/true, /*isFolder=*/false, /*isWritten=*/true);
    EXPECT_EQ(observer.attributes, 2);
    EXPECT_EQ(observer.values, 0);
    EXPECT_EQ(file.getFilter(), "*.sns");
    EXPECT_TRUE(file.getMustExist());
    EXPECT_FALSE(file.getIsFolder());
    EXPECT_TRUE(file.getIsWritten());
}

TEST_F(StringPropertyTest, AnyPointsToTheRawText) {
    file.set("${QUORIL_TEST_FOLDER}");
    EXPECT_EQ(*Poco::AnyCast<const std::string*>(file.getAny()), "${QUORIL_TEST_FOLDER}");
}

}  // namespace
}  // namespace Quoril::Core
