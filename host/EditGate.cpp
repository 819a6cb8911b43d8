#include "host/EditGate.hpp"

#include "host/SynchronizerLock.hpp"

namespace Quoril::Core {

namespace {

thread_local constinit bool isThisALayoutThread = false;
thread_local constinit unsigned depthOfThisThread = 0;

Synchronizer::Lock& gate() {
    // Never destroyed: objects with static lifetime may be edited at the process's end.
    static auto* const lock = new Synchronizer::Lock();
    return *lock;
}

}  // namespace

void EditGate::enter() {
    reenter(1);
}

void EditGate::leave() noexcept {
    if (isThisALayoutThread) return;
    if (--depthOfThisThread == 0) gate().unlock();
}

void EditGate::setIsLayoutThread(bool isLayoutThread) noexcept {
    isThisALayoutThread = isLayoutThread;
}

bool EditGate::isLayoutThread() noexcept {
    return isThisALayoutThread;
}

bool EditGate::isEntered() noexcept {
    return depthOfThisThread > 0;
}

unsigned EditGate::leaveWholly() noexcept {
    const unsigned depth = depthOfThisThread;
    depthOfThisThread = 0;
    if (depth > 0) gate().unlock();
    return depth;
}

void EditGate::reenter(unsigned depth) {
    if (isThisALayoutThread || depth == 0) return;
    if (depthOfThisThread == 0) gate().lock();
    depthOfThisThread += depth;
}

}  // namespace Quoril::Core
