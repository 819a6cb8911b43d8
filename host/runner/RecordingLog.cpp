#include "host/runner/RecordingLog.hpp"

#include "framework/ErrorLog.hpp"

#include <map>
#include <mutex>

#include <Poco/AutoPtr.h>
#include <Poco/Channel.h>
#include <Poco/Logger.h>
#include <Poco/Message.h>

namespace Quoril::Runner {

namespace {
namespace ErrorLog = Core::ErrorLog;

/// Keeps the causes by filter, and passes on what it hears.
class CauseChannel final : public Poco::Channel {
 public:
    explicit CauseChannel(Poco::AutoPtr<Poco::Channel> next) : next_(std::move(next)) {}

    void log(const Poco::Message& message) override {
        if (message.has(ErrorLog::kFilter) && message.has(ErrorLog::kCause)) {
            const std::lock_guard lock(mutex_);
            causes_[message[ErrorLog::kFilter]] = {
                message[ErrorLog::kCause],
                message.get(ErrorLog::kCulprit, "") != ErrorLog::kContent};
        }
        if (next_) next_->log(message);
    }

    std::optional<RecordingLog::Cause> take(const std::string& filter) {
        const std::lock_guard lock(mutex_);
        const auto found = causes_.find(filter);
        if (found == causes_.end()) return std::nullopt;
        const RecordingLog::Cause cause = found->second;
        causes_.erase(found);
        return cause;
    }

 protected:
    // The last reference destroys it.
    ~CauseChannel() override = default;

 private:
    Poco::AutoPtr<Poco::Channel> next_;
    std::mutex mutex_;
    std::map<std::string, RecordingLog::Cause> causes_;
};

Poco::AutoPtr<Poco::Channel> rootChannel() {
    return {Poco::Logger::root().getChannel(), /*shared=*/true};
}
}  // namespace

class RecordingLog::Listener {
 public:
    Listener() { Poco::Logger::setChannel(Poco::Logger::ROOT, channel_); }
    ~Listener() { Poco::Logger::setChannel(Poco::Logger::ROOT, before_); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    CauseChannel& channel() { return *channel_; }

 private:
    const Poco::AutoPtr<Poco::Channel> before_ = rootChannel();
    Poco::AutoPtr<CauseChannel> channel_ = new CauseChannel(before_);
};

RecordingLog::RecordingLog() : listener_(std::make_unique<Listener>()) {}

RecordingLog::~RecordingLog() = default;

std::optional<RecordingLog::Cause> RecordingLog::take(const std::string& filter) {
    return listener_->channel().take(filter);
}

}  // namespace Quoril::Runner
