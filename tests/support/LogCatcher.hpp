#pragma once

#include <mutex>
#include <string>
#include <vector>

#include <Poco/AutoPtr.h>
#include <Poco/Channel.h>
#include <Poco/Logger.h>
#include <Poco/Message.h>

namespace Support {

/// Keeps everything that is logged, for the scope.
class LogCatcher {
 public:
    LogCatcher() {
        // Nothing can be set before there is a logger.
        Poco::Logger::root();
        Poco::Logger::setChannel(Poco::Logger::ROOT, channel_);
    }
    ~LogCatcher() { Poco::Logger::setChannel(Poco::Logger::ROOT, nullptr); }
    LogCatcher(const LogCatcher&) = delete;
    LogCatcher& operator=(const LogCatcher&) = delete;

    [[nodiscard]] std::vector<Poco::Message> messages() { return channel_->messages(); }

 private:
    class Keeper final : public Poco::Channel {
     public:
        void log(const Poco::Message& message) override {
            const std::lock_guard lock(mutex_);
            messages_.push_back(message);
        }
        std::vector<Poco::Message> messages() {
            const std::lock_guard lock(mutex_);
            return messages_;
        }

     protected:
        ~Keeper() override = default;

     private:
        std::mutex mutex_;
        std::vector<Poco::Message> messages_;
    };

    Poco::AutoPtr<Keeper> channel_ = new Keeper;
};

}  // namespace Support
