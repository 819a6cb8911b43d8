#include "host/runner/ConnectionText.hpp"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

namespace Quoril::Runner {
namespace {

ConnectionEntry parse(const std::string& text) {
    return parseConnection({text, {}});
}

std::string messageOf(const std::string& text) {
    try {
        parse(text);
        return "accepted";
    } catch (const Poco::DataFormatException& error) {
        return error.message();
    }
}

TEST(ConnectionText, NamesTwoPins) {
    const ConnectionEntry connection = parse("imu.acc -> rec.input#1");
    EXPECT_EQ(connection.from.filter, "imu");
    EXPECT_EQ(connection.from.member, "acc");
    EXPECT_EQ(connection.to.filter, "rec");
    EXPECT_EQ(connection.to.member, "input#1");
    EXPECT_FALSE(connection.bufferSize);
    EXPECT_FALSE(connection.isLifo);
}

TEST(ConnectionText, TakesSettings) {
    const ConnectionEntry both = parse("imu.acc->rec.input#1 {buffer: 64, lifo: true}");
    EXPECT_EQ(both.to.member, "input#1");
    EXPECT_EQ(both.bufferSize, 64U);
    EXPECT_EQ(both.isLifo, true);
    const ConnectionEntry one = parse("imu.acc -> rec.input#1  { lifo:false }");
    EXPECT_FALSE(one.bufferSize);
    EXPECT_EQ(one.isLifo, false);
}

TEST(ConnectionText, PinsMayHaveBlanksDotsAndBraces) {
    const ConnectionEntry connection = parse("csv.Time (s) -> rec.a.b{c}");
    EXPECT_EQ(connection.from.member, "Time (s)");
    EXPECT_EQ(connection.to.filter, "rec");
    EXPECT_EQ(connection.to.member, "a.b{c}");
}

TEST(ConnectionText, IsRefusedWithTheCause) {
    EXPECT_EQ(messageOf("imu.acc rec.input"),
              "'imu.acc rec.input' is not of the form filter.pin -> filter.pin");
    EXPECT_EQ(messageOf("imu -> rec.input"), "'imu' is not of the form filter.name");
    EXPECT_EQ(messageOf("imu.acc -> "), "'' is not of the form filter.name");
    EXPECT_EQ(messageOf("imu.acc -> rec."), "'rec.' is not of the form filter.name");
    EXPECT_EQ(messageOf("imu.acc -> .x"), "'.x' is not of the form filter.name");
    EXPECT_EQ(messageOf("a.b -> c.d {}"), "setting '' has no value; write e.g. buffer: 64");
    EXPECT_EQ(messageOf("a.b -> c.d {buffer}"),
              "setting 'buffer' has no value; write e.g. buffer: 64");
    EXPECT_EQ(messageOf("a.b -> c.d {bufer: 3}"),
              "unknown setting 'bufer' of a connection; did you mean 'buffer'?");
    EXPECT_EQ(messageOf("a.b -> c.d {buffer: 0}"), "buffer '0' is not a number from 1 to 1000000");
    EXPECT_EQ(messageOf("a.b -> c.d {buffer: 1000001}"),
              "buffer '1000001' is not a number from 1 to 1000000");
    EXPECT_EQ(messageOf("a.b -> c.d {buffer: -1}"),
              "buffer '-1' is not a number from 1 to 1000000");
    EXPECT_EQ(messageOf("a.b -> c.d {lifo: yes}"), "'yes' is not true or false");
}

TEST(ConnectionText, TruthIsTrueOrFalseInAnyCase) {
    EXPECT_TRUE(parseTruth("true"));
    EXPECT_TRUE(parseTruth("TRUE"));
    EXPECT_FALSE(parseTruth("False"));
    for (const char* text : {"", "yes", "no", "on", "1", "truee"})
        EXPECT_THROW((void)parseTruth(text), Poco::DataFormatException) << text;
}

TEST(ConnectionText, EdgesOfTheBufferSize) {
    EXPECT_EQ(parseBufferSize("1"), 1U);
    EXPECT_EQ(parseBufferSize("1000000"), 1000000U);
    for (const char* text : {"", "1.5", "1,000", "64 ", "4294967297"})
        EXPECT_THROW((void)parseBufferSize(text), Poco::DataFormatException) << text;
}

}  // namespace
}  // namespace Quoril::Runner
