#include "filters/common/EndedRecording.hpp"

#include "filters/common/FilePath.hpp"
#include "framework/ErrorLog.hpp"

#include <Poco/Error.h>
#include <Poco/Exception.h>
#include <Poco/Logger.h>
#include <Poco/Message.h>

namespace Filters {
namespace {

namespace ErrorLog = Quoril::Core::ErrorLog;

struct Cause {
    std::string text;
    const char* culprit;
};

Cause causeOf(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const Poco::FileException& e) {
        // The message itself may be no more than the path.
        return {e.code() != 0 ? Poco::Error::getMessage(e.code()) : e.message(), ErrorLog::kFile};
    } catch (const Poco::Exception& e) {
        return {e.message(), ErrorLog::kContent};
    } catch (const std::exception& e) {
        return {e.what(), ErrorLog::kContent};
    }
}

}  // namespace

void logEndedRecording(const Quoril::Core::Filter& filter, const std::string& file,
                       const std::exception_ptr& error) noexcept {
    try {
        const Cause cause = causeOf(error);
        const std::string className = filter.getClassName();
        const std::string text = filter.getName() + ": the recording to '" +
                                 makeFilePath(file).text + "' ended by itself: " + cause.text;
        Poco::Message message(className, text, Poco::Message::PRIO_ERROR);
        message.set(ErrorLog::kFilter, filter.getName());
        message.set(ErrorLog::kCause, cause.text);
        message.set(ErrorLog::kCulprit, cause.culprit);
        Poco::Logger::get(className).log(message);
    } catch (const std::exception&) {
        // A log that fails must not keep the recording from ending.
    }
}

}  // namespace Filters
