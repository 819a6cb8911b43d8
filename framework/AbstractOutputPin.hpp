#pragma once

#include "framework/Pin.hpp"

#include <cstdint>
#include <vector>

namespace Quoril::Core {

class AbstractInputPin;

/// The untyped side of an output pin.
class QUORIL_CORE_API AbstractOutputPin : public virtual Pin {
 public:
    AbstractOutputPin(const std::string& name, PinManager* manager);
    ~AbstractOutputPin() override;

    /// Connects an input pin.
    /// @param skipNotification  true: the host is not asked, and the connection is not direct
    /// @throws Poco::DataFormatException if the pins carry different types of samples
    /// @throws Poco::ExistsException if the input pin is connected already
    /// @throws std::bad_alloc; nothing is connected then
    virtual void attach(AbstractInputPin& input, bool skipNotification) = 0;

    /// Disconnects an input pin; one that is not attached here is ignored. Never fails for want of
    /// memory.
    /// @param onlyIfSynchronous  true: leaves a connection between two threads alone
    virtual void detach(AbstractInputPin& input, bool onlyIfSynchronous) = 0;

    /// The filter runs under another layout manager now: attached pins choose their buffers anew.
    virtual void managerChanged() = 0;

    [[nodiscard]] virtual std::vector<AbstractInputPin*> getAttachedPins() const = 0;

    /// Number of samples pushed so far, whether pins are attached or not. Read under the
    /// synchronizer, as the next.
    [[nodiscard]] std::uint64_t getPushCount() const noexcept { return pushCount_; }
    /// Time stamp of the last sample pushed, seconds.
    [[nodiscard]] double getLastTimeStamp() const noexcept { return lastTimeStamp_; }

 protected:
    void countPush(double timeStamp) noexcept {
        ++pushCount_;
        lastTimeStamp_ = timeStamp;
    }

    /// Asks the host about a new connection. isDirect comes in true and stays true only if one
    /// thread drives both filters although neither has a layout manager.
    void notifyAttached(AbstractInputPin& input, bool& isDirect);
    void notifyDetached(AbstractInputPin& input);

 private:
    std::uint64_t pushCount_ = 0;
    double lastTimeStamp_ = 0.0;
};

}  // namespace Quoril::Core
