#pragma once

#include "framework/InputPinBase.hpp"
#include "framework/Synchronizer.hpp"

#include <algorithm>
#include <set>
#include <string>
#include <typeinfo>
#include <vector>

#include <Poco/Exception.h>

namespace Quoril::Core {

/// An output pin for samples of T: the filter fills the current sample, then pushes it.
template <class T>
class QUORIL_TEMPLATE_API OutputPinBase : public AbstractOutputPin {
 public:
    using Sample = TimeStampedData<T>;
    using Input = InputPinBase<T>;

    OutputPinBase(const std::string& name, PinManager* manager)
        : Pin(name, manager), AbstractOutputPin(name, manager) {}

    ~OutputPinBase() override { disconnectAll(); }

    [[nodiscard]] std::string getDataTypeName() const override { return typeid(Sample).name(); }

    /// The value of the current sample, to be filled before push.
    [[nodiscard]] T& getValue() noexcept { return sample_.value; }
    [[nodiscard]] const Sample& getSample() const noexcept { return sample_; }

    /// Delivers the current sample to every attached input pin.
    /// @param timeStamp  seconds
    void push(double timeStamp) {
        sample_.timeStamp = timeStamp;
        countPush(timeStamp);
        for (Input* input : attached_)
            input->push(sample_);
    }

    void attach(AbstractInputPin& input, bool skipNotification) override {
        auto* const typed = dynamic_cast<Input*>(&input);
        if (typed == nullptr || input.getDataTypeName() != getDataTypeName())
            throw Poco::DataFormatException("Pin '" + input.getName() +
                                            "' carries another type of samples than pin '" +
                                            getName() + "'");
        const Synchronizer::DisablerLocker lock(getSynchronizer(), input.getSynchronizer());
        if (input.getOutputPin() != nullptr || attached_.contains(typed))
            throw Poco::ExistsException();
        // The place in the set comes first: nothing may fail once the input pin is connected.
        std::set<Input*> place{typed};
        bool isDirect = false;
        if (!skipNotification) {
            isDirect = true;
            notifyAttached(input, isDirect);
        }
        typed->setOutputPin(this, isDirect);
        attached_.merge(place);
    }

    void detach(AbstractInputPin& input, bool onlyIfSynchronous) override {
        if (onlyIfSynchronous && !input.getIsSynchronous()) return;
        const Synchronizer::DisablerLocker lock(getSynchronizer(), input.getSynchronizer());
        const auto found = std::find_if(attached_.begin(), attached_.end(),
                                        [&](const Input* pin) { return pin == &input; });
        if (found == attached_.end()) return;
        if (input.getIsSynchronous()) notifyDetached(input);
        (*found)->setOutputPin(nullptr, true);
        attached_.erase(found);
    }

    void managerChanged() override {
        for (Input* input : attached_) {
            if (input->getSynchronizer() == getSynchronizer()) {
                input->rebuildBufferStrategy();
                continue;
            }
            const Synchronizer::DisablerLocker lock(input->getSynchronizer(), nullptr);
            input->rebuildBufferStrategy();
        }
    }

    [[nodiscard]] std::vector<AbstractInputPin*> getAttachedPins() const override {
        return {attached_.begin(), attached_.end()};
    }

 protected:
    void disconnectAll() {
        // Under the own side's lock no attached pin can go away meanwhile.
        const Synchronizer::DisablerLocker own(getSynchronizer(), nullptr);
        while (!attached_.empty())
            OutputPinBase::detach(**attached_.begin(), false);
    }

 private:
    std::set<Input*> attached_;
    Sample sample_;
};

}  // namespace Quoril::Core
