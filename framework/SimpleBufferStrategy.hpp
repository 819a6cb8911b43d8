#pragma once

#include "framework/AbstractBufferStrategy.hpp"

namespace Quoril::Core {

/// A buffer without locking: writer and reader are on one thread.
template <class Sample, class Buffer>
class QUORIL_TEMPLATE_API SimpleBufferStrategy final : public AbstractBufferStrategy<Sample> {
 public:
    explicit SimpleBufferStrategy(unsigned capacity) : buffer_(capacity) {}

    bool push(const Sample& sample) override { return buffer_.push(sample); }
    bool pop(const Sample*& sample) override { return buffer_.pop(sample); }
    void clear() override { buffer_.clear(); }
    [[nodiscard]] unsigned capacity() const override { return buffer_.capacity(); }
    [[nodiscard]] bool isEmpty() const override { return buffer_.isEmpty(); }
    [[nodiscard]] unsigned size() const override { return buffer_.size(); }

 private:
    Buffer buffer_;
};

}  // namespace Quoril::Core
