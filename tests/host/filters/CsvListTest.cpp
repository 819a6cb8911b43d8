#include "host/filters/CsvList.hpp"
#include "tests/host/filters/Support.hpp"

#include <gmock/gmock.h>

namespace Quoril::Core {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> elementsOf(std::string_view field) {
    auto list = CsvList::of(field);
    EXPECT_TRUE(list.has_value()) << field;
    std::vector<std::string> texts;
    const std::size_t count = list->count();
    while (list->next())
        texts.emplace_back(list->getText());
    EXPECT_EQ(texts.size(), count) << field;
    return texts;
}

TEST(CsvListTest, ElementsStandBetweenCommasOrBlanks) {
    EXPECT_THAT(elementsOf("[-1366, -471, 8203]"), ElementsAre("-1366", "-471", "8203"));
    EXPECT_THAT(elementsOf(" [ 1,2 ,3 ] "), ElementsAre("1", "2", "3"));
    EXPECT_THAT(elementsOf("[1.5  2\t3]"), ElementsAre("1.5", "2", "3"));
    EXPECT_THAT(elementsOf("[7]"), ElementsAre("7"));
    EXPECT_THAT(elementsOf("[]"), ElementsAre());
    EXPECT_THAT(elementsOf("[ ]"), ElementsAre());
}

TEST(CsvListTest, NothingBesideACommaIsABlankElement) {
    EXPECT_THAT(elementsOf("[1,,3]"), ElementsAre("1", "", "3"));
    EXPECT_THAT(elementsOf("[1,]"), ElementsAre("1", ""));
    EXPECT_THAT(elementsOf("[,]"), ElementsAre("", ""));
}

TEST(CsvListTest, WhatHasNoBracketsIsNoList) {
    for (const char* field : {"", "1", "[", "]", "[1", "1]", "(1, 2)"})
        EXPECT_FALSE(CsvList::of(field).has_value()) << field;
}

}  // namespace
}  // namespace Quoril::Core
