#pragma once

#include "framework/Pin.hpp"

#include <atomic>
#include <cstdint>

namespace Quoril::Core {

class AbstractOutputPin;

/// What an input pin did so far, in samples. Whatever was pushed and is in no other count waits in
/// the buffer.
struct PinCounters {
    std::uint64_t pushed = 0;       ///< delivered by the connected output pin
    std::uint64_t taken = 0;        ///< fetched by the filter
    std::uint64_t overwritten = 0;  ///< lost because the buffer was full
    std::uint64_t cleared = 0;      ///< forgotten with a buffer that was cleared or replaced
};

/// Buffer settings of an input pin.
struct BufferSettings {
    unsigned size = 1;    ///< samples; 1 keeps the newest only, 0 is refused
    bool isLifo = false;  ///< take the newest sample first
};

/// The untyped side of an input pin: buffer settings, connection, counters.
class QUORIL_CORE_API AbstractInputPin : public virtual Pin {
 public:
    AbstractInputPin(const std::string& name, PinManager* manager);
    ~AbstractInputPin() override;

    /// Forgets the last sample and empties the buffer.
    virtual void clear() = 0;
    /// Chooses the buffer strategy anew, from the settings and the connection.
    virtual void rebuildBufferStrategy() = 0;

    /// True when the pin is connected and one thread drives both sides.
    [[nodiscard]] bool getIsSynchronous() const;

    /// A blocking pin between two layouts makes its reader wait for data. Changes the buffer as
    /// setBuffer() does.
    void setIsBlocking(bool isBlocking);
    [[nodiscard]] bool getIsBlocking() const noexcept { return isBlocking_; }

    /// Changes the buffer and rebuilds it, under the synchronizers of both sides; samples that wait
    /// are forgotten.
    /// @throws Poco::InvalidArgumentException if the size is 0
    /// @throws std::bad_alloc; the pin keeps its buffer then, with what waits in it
    void setBuffer(const BufferSettings& settings);
    [[nodiscard]] const BufferSettings& getBuffer() const noexcept { return settings_; }
    /// False while the buffer is the one that every new pin has: hosts may then choose another one,
    /// where a size that the filter set, be it 1, has its reason.
    [[nodiscard]] bool isBufferChosen() const noexcept { return isBufferChosen_; }

    /// The connected output pin, or null.
    [[nodiscard]] AbstractOutputPin* getOutputPin() const noexcept { return outputPin_; }
    /// Whether the host declared the connection as driven by one thread.
    [[nodiscard]] bool getIsDirect() const noexcept { return isDirect_; }

    /// Safe from any thread; the numbers of a running flow are a moment's.
    [[nodiscard]] PinCounters getCounters() const noexcept;

    /// Makes what was pushed so far known to the reader's layout. Between two layouts the writer's
    /// layout does so at the end of each call of the writer, so that the reader is never called
    /// for half a row of several pins. Host only.
    void publish() noexcept { published_.store(pushed_.load(std::memory_order_relaxed)); }
    [[nodiscard]] std::uint64_t getPublishedCount() const noexcept { return published_.load(); }

    /// The count of pushed samples that the filter's last call was made for. Host only.
    [[nodiscard]] std::uint64_t getSeenCount() const noexcept { return seen_; }
    void setSeenCount(std::uint64_t seen) noexcept { seen_ = seen; }

 protected:
    void storeConnection(AbstractOutputPin* outputPin, bool isDirect) noexcept;

    void countPushed() noexcept { increment(pushed_); }
    void countTaken() noexcept { increment(taken_); }
    void countOverwritten() noexcept { increment(overwritten_); }
    void countCleared(std::uint64_t count) noexcept { increment(cleared_, count); }

 private:
    /// Gives a setting that the buffer depends on another value, if the buffer can be made.
    template <class Setting>
    void rebuildWith(Setting& setting, const Setting& value);

    // One thread at a time writes each counter, so that plain stores are enough.
    static void increment(std::atomic<std::uint64_t>& counter, std::uint64_t by = 1) noexcept {
        counter.store(counter.load(std::memory_order_relaxed) + by, std::memory_order_relaxed);
    }

    BufferSettings settings_;
    bool isDirect_ = true;
    bool isBlocking_ = false;
    bool isBufferChosen_ = false;
    AbstractOutputPin* outputPin_ = nullptr;
    std::atomic<std::uint64_t> pushed_{0};
    std::atomic<std::uint64_t> taken_{0};
    std::atomic<std::uint64_t> overwritten_{0};
    std::atomic<std::uint64_t> cleared_{0};
    std::atomic<std::uint64_t> published_{0};
    std::uint64_t seen_ = 0;
};

}  // namespace Quoril::Core
