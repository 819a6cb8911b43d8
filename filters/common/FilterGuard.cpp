#include "filters/common/FilterGuard.hpp"

#include <Poco/Exception.h>

namespace Filters {

void FilterMutex::lock() {
    if (owner_.load(std::memory_order_relaxed) == std::this_thread::get_id())
        throw Poco::IllegalStateException("The filter's mutex is held by this thread already");
    mutex_.lock();
    owner_.store(std::this_thread::get_id(), std::memory_order_relaxed);
}

void FilterMutex::unlock() {
    owner_.store(std::thread::id(), std::memory_order_relaxed);
    mutex_.unlock();
}

FilterGuard::Busy::Busy(FilterGuard& guard) : guard_(guard) {
    guard_.changeBusyCount(+1);
}

// NOLINTNEXTLINE(bugprone-exception-escape): the count cannot stay raised
FilterGuard::Busy::~Busy() {
    guard_.changeBusyCount(-1);
}

FilterGuard::Call::Call(FilterGuard& guard) : guard_(guard) {
    guard_.mutex_.lock();
}

FilterGuard::Call::~Call() {
    guard_.mutex_.unlock();
}

void FilterGuard::changeBusyCount(int difference) {
    mutex_.lock();
    busyCount_ += difference;
    mutex_.unlock();
}

}  // namespace Filters
