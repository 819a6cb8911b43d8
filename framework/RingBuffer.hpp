#pragma once

#include "framework/TimeStampedData.hpp"

#include <cstddef>
#include <utility>
#include <vector>

namespace Quoril::Core {

/// A circular array of samples whose matrix storage is reused: once warm it allocates nothing.
/// Not locked; FifoBuffer and LifoBuffer add the order of taking.
template <class Sample>
class RingBuffer {
 public:
    /// @param capacity  samples, at least 1
    explicit RingBuffer(unsigned capacity)
        : samples_(std::size_t{capacity} + 1), ring_(capacity), readSlot_(&samples_[capacity]) {
        for (std::size_t i = 0; i < ring_.size(); ++i)
            ring_[i] = &samples_[i];
    }
    RingBuffer(const RingBuffer&) = delete;
    RingBuffer& operator=(const RingBuffer&) = delete;

    /// Adds a copy of the sample; false when the oldest one was lost for it.
    bool push(const Sample& sample) {
        const bool isFull = count_ == ring_.size();
        if (isFull) dropOldest();
        copySample(*ring_[wrap(head_ + count_)], sample);
        ++count_;
        return !isFull;
    }

    void clear() {
        head_ = 0;
        count_ = 0;
    }

    [[nodiscard]] unsigned capacity() const { return static_cast<unsigned>(ring_.size()); }
    [[nodiscard]] bool isEmpty() const { return count_ == 0; }
    [[nodiscard]] unsigned size() const { return static_cast<unsigned>(count_); }

 protected:
    /// Hands out the sample at a distance from the oldest one. It becomes the read slot, which the
    /// ring leaves alone until the next call, and the former read slot takes its place.
    const Sample* moveToReadSlot(std::size_t distance) {
        std::swap(readSlot_, ring_[wrap(head_ + distance)]);
        return readSlot_;
    }

    void dropOldest() {
        if (count_ == 1) return clear();
        head_ = wrap(head_ + 1);
        --count_;
    }

    void dropNewest() {
        if (count_ == 1) return clear();
        --count_;
    }

 private:
    [[nodiscard]] std::size_t wrap(std::size_t index) const {
        return index >= ring_.size() ? index - ring_.size() : index;
    }

    // Samples never move, only pointers to them do: cheaper than an exchange of two samples.
    std::vector<Sample> samples_;
    std::vector<Sample*> ring_;
    Sample* readSlot_;
    std::size_t head_ = 0;
    std::size_t count_ = 0;
};

}  // namespace Quoril::Core
