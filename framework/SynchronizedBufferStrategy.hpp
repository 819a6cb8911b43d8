#pragma once

#include "framework/AbstractBufferStrategy.hpp"
#include "framework/Synchronizer.hpp"

#include <Poco/Event.h>
#include <Poco/Mutex.h>

namespace Quoril::Core {

/// A buffer between two threads whose reader sleeps until the writer signals.
template <class Sample, class Buffer>
class QUORIL_TEMPLATE_API SynchronizedBufferStrategy final : public AbstractBufferStrategy<Sample> {
 public:
    /// @param synchronizer  the reading pin's; must outlive the strategy
    SynchronizedBufferStrategy(unsigned capacity, Synchronizer& synchronizer)
        : synchronizer_(synchronizer), buffer_(capacity) {}

    bool push(const Sample& sample) override {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        const bool isNoneLost = buffer_.push(sample);
        synchronizer_.signal(event_);
        return isNoneLost;
    }

    /// Waits once when the buffer is empty; false when it is still empty then, because the wait
    /// was ended for another reason.
    bool pop(const Sample*& sample) override {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        if (buffer_.pop(sample)) return true;
        synchronizer_.wait(mutex_, event_);
        return buffer_.pop(sample);
    }

    /// Sends a waiting reader home too: the buffer may be about to go.
    void clear() override {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        buffer_.clear();
        synchronizer_.signal(event_);
    }

    [[nodiscard]] unsigned capacity() const override {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        return buffer_.capacity();
    }

    [[nodiscard]] bool isEmpty() const override {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        return buffer_.isEmpty();
    }

    [[nodiscard]] unsigned size() const override {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        return buffer_.size();
    }

 private:
    Synchronizer& synchronizer_;
    mutable Poco::FastMutex mutex_;
    Poco::Event event_;
    Buffer buffer_;
};

}  // namespace Quoril::Core
