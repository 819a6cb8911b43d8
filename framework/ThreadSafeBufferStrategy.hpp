#pragma once

#include "framework/AbstractBufferStrategy.hpp"

#include <Poco/Mutex.h>

namespace Quoril::Core {

/// A buffer between two threads; taking never waits.
template <class Sample, class Buffer>
class QUORIL_TEMPLATE_API ThreadSafeBufferStrategy final : public AbstractBufferStrategy<Sample> {
 public:
    explicit ThreadSafeBufferStrategy(unsigned capacity) : buffer_(capacity) {}

    bool push(const Sample& sample) override {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        return buffer_.push(sample);
    }

    bool pop(const Sample*& sample) override {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        return buffer_.pop(sample);
    }

    void clear() override {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        buffer_.clear();
    }

    // The capacity never changes, so no lock is needed.
    [[nodiscard]] unsigned capacity() const override { return buffer_.capacity(); }

    [[nodiscard]] bool isEmpty() const override {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        return buffer_.isEmpty();
    }

    [[nodiscard]] unsigned size() const override {
        const Poco::FastMutex::ScopedLock lock(mutex_);
        return buffer_.size();
    }

 private:
    mutable Poco::FastMutex mutex_;
    Buffer buffer_;
};

}  // namespace Quoril::Core
