#pragma once

#include "framework/NamedObject.hpp"
#include "framework/Synchronizer.hpp"

#include <memory>
#include <string>
#include <vector>

namespace Quoril::Core {

class AbstractInputPin;
class AbstractOutputPin;
class LayoutManager;

/// An object with pins: the base of filters. Pins enter and leave its lists by themselves, when
/// they are made and destroyed.
class QUORIL_CORE_API PinManager : public NamedObject {
 public:
    explicit PinManager(const std::string& name);
    ~PinManager() override;

    /// The processing call: the host calls it whenever the filter should do its work, under the
    /// filter's synchronizer. It must not let an exception out.
    virtual void process() = 0;

    /// The lock that excludes edits and processing calls from each other.
    [[nodiscard]] virtual Synchronizer* getSynchronizer();

    /// The layout manager whose thread runs the filter, or null.
    [[nodiscard]] LayoutManager* getManager() const noexcept { return manager_; }

    /// Pins in the order of their making. Read under the synchronizer.
    [[nodiscard]] const std::vector<AbstractInputPin*>& getInputPins() const noexcept {
        return inputPins_;
    }
    [[nodiscard]] const std::vector<AbstractOutputPin*>& getOutputPins() const noexcept {
        return outputPins_;
    }
    /// The pin of that name, or null.
    [[nodiscard]] AbstractInputPin* findInputPin(const std::string& name) const;
    [[nodiscard]] AbstractOutputPin* findOutputPin(const std::string& name) const;

 protected:
    void storeManager(LayoutManager* manager) noexcept { manager_ = manager; }

 private:
    friend class AbstractInputPin;
    friend class AbstractOutputPin;

    LayoutManager* manager_ = nullptr;
    Synchronizer synchronizer_;
    std::vector<AbstractInputPin*> inputPins_;
    std::vector<AbstractOutputPin*> outputPins_;
};

}  // namespace Quoril::Core
