#pragma once

#include "framework/AbstractInputPin.hpp"
#include "framework/FifoBuffer.hpp"
#include "framework/LifoBuffer.hpp"
#include "framework/SimpleBufferStrategy.hpp"
#include "framework/SingleValueBuffer.hpp"
#include "framework/SingleValuePtrBuffer.hpp"
#include "framework/SynchronizedBufferStrategy.hpp"
#include "framework/ThreadSafeBufferStrategy.hpp"

#include <memory>

#include <Poco/Exception.h>

namespace Quoril::Core {

/// How a buffer is protected: not at all (one thread), by a mutex with a waiting reader, or by a
/// mutex alone.
enum class BufferFamily { kSimple, kSynchronized, kThreadSafe };

/// A strategy over one kind of buffer.
template <class Sample, class Buffer>
std::unique_ptr<AbstractBufferStrategy<Sample>> protectBuffer(BufferFamily family, unsigned size,
                                                              Synchronizer* synchronizer) {
    switch (family) {
        case BufferFamily::kSimple:
            return std::make_unique<SimpleBufferStrategy<Sample, Buffer>>(size);
        case BufferFamily::kSynchronized:
            return std::make_unique<SynchronizedBufferStrategy<Sample, Buffer>>(size,
                                                                                *synchronizer);
        case BufferFamily::kThreadSafe:
            break;
    }
    return std::make_unique<ThreadSafeBufferStrategy<Sample, Buffer>>(size);
}

/// Makes one of the nine strategies.
/// @param synchronizer  the reading pin's, needed by the synchronized family
/// @throws Poco::InvalidArgumentException if the size is 0
template <class Sample>
std::unique_ptr<AbstractBufferStrategy<Sample>> makeBufferStrategy(BufferFamily family,
                                                                   const BufferSettings& settings,
                                                                   Synchronizer* synchronizer) {
    if (settings.size == 0) throw Poco::InvalidArgumentException("A buffer cannot have size 0");
    if (settings.size > 1) {
        if (settings.isLifo)
            return protectBuffer<Sample, LifoBuffer<Sample>>(family, settings.size, synchronizer);
        return protectBuffer<Sample, FifoBuffer<Sample>>(family, settings.size, synchronizer);
    }
    if (family != BufferFamily::kSimple)
        return protectBuffer<Sample, SingleValueBuffer<Sample>>(family, settings.size,
                                                                synchronizer);
    using Pointer = SimpleBufferStrategy<Sample, SingleValuePtrBuffer<Sample>>;
    return std::make_unique<Pointer>(1U);
}

}  // namespace Quoril::Core
