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
#include <type_traits>

#include <Poco/Exception.h>

namespace Quoril::Core {

/// How a buffer is protected: not at all (one thread), by a mutex with a waiting reader, or by a
/// mutex alone.
enum class BufferFamily { kSimple, kSynchronized, kThreadSafe };

/// Makes one of the nine strategies.
/// @param synchronizer  the reading pin's, needed by the synchronized family
/// @throws Poco::InvalidArgumentException if the size is 0
template <class Sample>
std::unique_ptr<AbstractBufferStrategy<Sample>> makeBufferStrategy(BufferFamily family,
                                                                   const BufferSettings& settings,
                                                                   Synchronizer* synchronizer) {
    if (settings.size == 0) throw Poco::InvalidArgumentException("A buffer cannot have size 0");
    const auto make =
        [&]<class Buffer>(
            std::type_identity<Buffer>) -> std::unique_ptr<AbstractBufferStrategy<Sample>> {
        switch (family) {
            case BufferFamily::kSimple:
                return std::make_unique<SimpleBufferStrategy<Sample, Buffer>>(settings.size);
            case BufferFamily::kSynchronized:
                return std::make_unique<SynchronizedBufferStrategy<Sample, Buffer>>(settings.size,
                                                                                    *synchronizer);
            case BufferFamily::kThreadSafe:
                break;
        }
        return std::make_unique<ThreadSafeBufferStrategy<Sample, Buffer>>(settings.size);
    };
    if (settings.size > 1) {
        if (settings.isLifo) return make(std::type_identity<LifoBuffer<Sample>>());
        return make(std::type_identity<FifoBuffer<Sample>>());
    }
    if (family != BufferFamily::kSimple)
        return make(std::type_identity<SingleValueBuffer<Sample>>());
    using Pointer = SimpleBufferStrategy<Sample, SingleValuePtrBuffer<Sample>>;
    return std::make_unique<Pointer>(1U);
}

}  // namespace Quoril::Core
