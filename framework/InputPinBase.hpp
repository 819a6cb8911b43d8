#pragma once

#include "framework/AbstractBufferStrategy.hpp"
#include "framework/AbstractInputPin.hpp"
#include "framework/AbstractOutputPin.hpp"
#include "framework/BufferStrategyFactory.hpp"
#include "framework/PinManager.hpp"
#include "framework/Synchronizer.hpp"

#include <memory>
#include <string>
#include <typeinfo>
#include <utility>

namespace Quoril::Core {

/// An input pin for samples of T. Push comes from the connected output pin's thread, everything
/// else from the thread of the filter that owns the pin, or under its synchronizer.
template <class T>
class QUORIL_TEMPLATE_API InputPinBase : public AbstractInputPin {
 public:
    using Sample = TimeStampedData<T>;

    InputPinBase(const std::string& name, PinManager* manager)
        : Pin(name, manager), AbstractInputPin(name, manager) {
        rebuild();
    }

    ~InputPinBase() override { disconnect(); }

    void clear() override {
        lastSample_ = nullptr;
        lastTime_ = 0.0;
        clearBuffer();
    }

    void rebuildBufferStrategy() override { rebuild(); }

    /// Stores the connection and rebuilds the buffer; null disconnects, which never fails.
    /// @throws std::bad_alloc; the connection is as before then
    virtual void setOutputPin(AbstractOutputPin* outputPin, bool isDirect) {
        AbstractOutputPin* const pinBefore = getOutputPin();
        const bool wasDirect = getIsDirect();
        storeConnection(outputPin, isDirect);
        try {
            rebuild();
        } catch (...) {
            // Destructors disconnect. The present buffer does for a pin that nobody writes to.
            if (outputPin == nullptr) return InputPinBase::clear();
            storeConnection(pinBefore, wasDirect);
            throw;
        }
    }

    virtual void push(const Sample& sample) {
        countPushed();
        if (!strategy_->push(sample)) countOverwritten();
    }

    [[nodiscard]] std::string getDataTypeName() const override { return typeid(Sample).name(); }

    /// True while a fetched sample waits to be taken.
    [[nodiscard]] bool hasData() const noexcept { return lastSample_ != nullptr; }

    /// Fetches a sample from the buffer unless one waits already; false when there is none. A
    /// blocking pin waits for one, and gives up the synchronizer meanwhile: every change of the
    /// pin ends the wait, BUT THE PIN MUST NOT BE DESTROYED.
    bool fetch() {
        if (lastSample_ != nullptr) return true;
        const Sample* sample = nullptr;
        if (!pop(sample)) return false;
        countTaken();
        if (handsOutForeignSample_) {
            // The writer may change its sample before this one is taken.
            copySample(ownSample_, *sample);
            sample = &ownSample_;
        }
        lastSample_ = sample;
        return true;
    }

    /// The fetched sample without taking it, or null.
    [[nodiscard]] const Sample* peek() const noexcept { return lastSample_; }

    /// Takes the fetched sample: it counts as read and its time becomes the pin's last time. Null
    /// when none waits. The sample stays valid until the next fetch or change of the buffer.
    const Sample* take() noexcept {
        const Sample* sample = lastSample_;
        lastSample_ = nullptr;
        if (sample != nullptr) lastTime_ = sample->timeStamp;
        return sample;
    }

    /// Time stamp of the last sample taken, seconds; 0 after a clear.
    [[nodiscard]] double getLastTime() const noexcept { return lastTime_; }

    [[nodiscard]] AbstractBufferStrategy<Sample>& getStrategy() noexcept { return *strategy_; }
    [[nodiscard]] const AbstractBufferStrategy<Sample>& getStrategy() const noexcept {
        return *strategy_;
    }

    [[nodiscard]] unsigned getWaitingCount() const override { return strategy_->size(); }

 protected:
    void disconnect() {
        // Under the own side's lock the other side cannot go away meanwhile.
        const Synchronizer::DisablerLocker own(getSynchronizer(), nullptr);
        if (AbstractOutputPin* output = getOutputPin()) output->detach(*this, false);
    }

 private:
    using Strategy = std::shared_ptr<AbstractBufferStrategy<Sample>>;

    [[nodiscard]] BufferFamily chooseFamily() const {
        const AbstractOutputPin* output = getOutputPin();
        if (output == nullptr) return BufferFamily::kSimple;
        const LayoutManager* here = layoutManagerOf(*this);
        const LayoutManager* there = layoutManagerOf(*output);
        if (here == there && (here != nullptr || getIsDirect())) return BufferFamily::kSimple;
        if (here != there && here != nullptr && getIsBlocking()) return BufferFamily::kSynchronized;
        return BufferFamily::kThreadSafe;
    }

    static const LayoutManager* layoutManagerOf(const Pin& pin) {
        const PinManager* filter = pin.getManager();
        return filter == nullptr ? nullptr : filter->getManager();
    }

    /// Replaces the buffer strategy by the one that settings and connection ask for.
    void rebuild() {
        const BufferFamily family = chooseFamily();
        // Made before the present one goes, which stays in use when memory runs out.
        Strategy made = makeBufferStrategy<Sample>(family, getBuffer(), getSynchronizer());
        if (strategy_) clearBuffer();
        strategy_ = std::move(made);
        canWait_ = family == BufferFamily::kSynchronized;
        handsOutForeignSample_ = family == BufferFamily::kSimple && getBuffer().size == 1;
        InputPinBase::clear();
    }

    void clearBuffer() {
        countCleared(strategy_->size());
        strategy_->clear();
    }

    bool pop(const Sample*& sample) {
        if (!canWait_) return strategy_->pop(sample);
        // An edit may replace the strategy while this thread waits in it.
        const Strategy present = strategy_;
        return present->pop(sample) && present == strategy_;
    }

    Strategy strategy_;
    const Sample* lastSample_ = nullptr;
    double lastTime_ = 0.0;
    Sample ownSample_;
    bool canWait_ = false;
    bool handsOutForeignSample_ = false;
};

}  // namespace Quoril::Core
