#pragma once

#include "framework/RingBuffer.hpp"

namespace Quoril::Core {

/// Hands out the newest sample first.
template <class Sample>
class LifoBuffer : public RingBuffer<Sample> {
 public:
    using RingBuffer<Sample>::RingBuffer;

    bool pop(const Sample*& sample) {
        if (this->isEmpty()) return false;
        sample = this->moveToReadSlot(this->size() - 1);
        this->dropNewest();
        return true;
    }
};

}  // namespace Quoril::Core
