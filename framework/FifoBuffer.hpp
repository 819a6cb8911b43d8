#pragma once

#include "framework/RingBuffer.hpp"

namespace Quoril::Core {

/// Hands out the oldest sample first.
template <class Sample>
class FifoBuffer : public RingBuffer<Sample> {
 public:
    using RingBuffer<Sample>::RingBuffer;

    bool pop(const Sample*& sample) {
        if (this->isEmpty()) return false;
        sample = this->moveToReadSlot(0);
        this->dropOldest();
        return true;
    }
};

}  // namespace Quoril::Core
