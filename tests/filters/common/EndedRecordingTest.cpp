#include "filters/common/EndedRecording.hpp"
#include "framework/ErrorLog.hpp"
#include "tests/support/BareFilter.hpp"
#include "tests/support/LogCatcher.hpp"

#include <cerrno>
#include <stdexcept>

#include <Poco/Exception.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Filters {
namespace {

namespace ErrorLog = Quoril::Core::ErrorLog;

class EndedRecordingTest : public testing::Test {
 protected:
    /// The one message that the error makes.
    template <class Error>
    Poco::Message messageOf(const Error& error) {
        logEndedRecording(filter_, "/data/a.bin", std::make_exception_ptr(error));
        const std::vector<Poco::Message> messages = log_.messages();
        EXPECT_EQ(messages.size(), 1U);
        return messages.empty() ? Poco::Message() : messages.back();
    }

    Support::LogCatcher log_;
    Support::BareFilter filter_;
};

TEST_F(EndedRecordingTest, IsToldInTheSystemsWords) {
    const Poco::Message message = messageOf(Poco::WriteFileException("", "/data/a.bin", ENOSPC));
    EXPECT_EQ(message.getText(),
              "bare: the recording to '/data/a.bin' ended by itself: No space left on device");
    EXPECT_EQ(message.getSource(), "BareFilter");
    EXPECT_EQ(message.getPriority(), Poco::Message::PRIO_ERROR);
    EXPECT_EQ(message.get(ErrorLog::kFilter), "bare");
    EXPECT_EQ(message.get(ErrorLog::kCause), "No space left on device");
    EXPECT_EQ(message.get(ErrorLog::kCulprit), ErrorLog::kFile);
}

TEST_F(EndedRecordingTest, IsToldInOurWordsIfTheSystemHasNone) {
    EXPECT_EQ(messageOf(Poco::WriteFileException("no data accepted")).get(ErrorLog::kCause),
              "no data accepted");
}

TEST_F(EndedRecordingTest, ContentThatCannotBeWrittenIsNoFaultOfTheFile) {
    const Poco::Message message = messageOf(Poco::RangeException("too large"));
    EXPECT_EQ(message.get(ErrorLog::kCause), "too large");
    EXPECT_EQ(message.get(ErrorLog::kCulprit), ErrorLog::kContent);
}

TEST_F(EndedRecordingTest, AnyErrorIsTold) {
    EXPECT_EQ(messageOf(std::runtime_error("odd")).get(ErrorLog::kCause), "odd");
}

TEST(EndedRecording, WithoutALogNothingHappens) {
    const Support::BareFilter filter;
    EXPECT_NO_THROW(
        logEndedRecording(filter, "a.bin", std::make_exception_ptr(Poco::RangeException("x"))));
}

}  // namespace
}  // namespace Filters
