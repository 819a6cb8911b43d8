#pragma once

#include "framework/Filter.hpp"

#include <atomic>
#include <thread>

/// Makes a filter's calls on a thread, as a host does that holds no lock meanwhile.
class Caller {
 public:
    explicit Caller(Quoril::Core::Filter& filter)
        : thread_([this, &filter] {
              while (!isEnded_) {
                  filter.process();
                  ++calls_;
              }
          }) {}
    ~Caller() {
        isEnded_ = true;
        thread_.join();
    }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    /// Returns after at least two calls that began later than this one.
    void waitForCalls() const {
        const unsigned start = calls_;
        while (calls_ - start < 3)
            std::this_thread::yield();
    }

 private:
    std::atomic<bool> isEnded_{false};
    std::atomic<unsigned> calls_{0};
    std::thread thread_;
};
