#pragma once

#include "framework/TimeStampedData.hpp"

#include <array>
#include <utility>

namespace Quoril::Core {

/// Keeps a copy of the newest sample only; each is read at most once.
template <class Sample>
class SingleValueBuffer {
 public:
    explicit SingleValueBuffer(unsigned /*capacity*/ = 1) {}
    SingleValueBuffer(const SingleValueBuffer&) = delete;
    SingleValueBuffer& operator=(const SingleValueBuffer&) = delete;

    /// Keeps a copy of the sample; false when an unread one was lost for it.
    bool push(const Sample& sample) {
        copySample(*store_, sample);
        const bool wasConsumed = consumed_;
        consumed_ = false;
        return wasConsumed;
    }

    bool pop(const Sample*& sample) {
        if (consumed_) return false;
        std::swap(readSlot_, store_);
        consumed_ = true;
        sample = readSlot_;
        return true;
    }

    void clear() { consumed_ = true; }
    [[nodiscard]] unsigned capacity() const { return 1; }
    [[nodiscard]] bool isEmpty() const { return consumed_; }
    [[nodiscard]] unsigned size() const { return consumed_ ? 0 : 1; }

 private:
    std::array<Sample, 2> samples_;
    Sample* store_ = &samples_[0];
    Sample* readSlot_ = &samples_[1];
    bool consumed_ = true;
};

}  // namespace Quoril::Core
