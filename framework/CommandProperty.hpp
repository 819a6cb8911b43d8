#pragma once

#include "framework/AbstractProperty.hpp"

namespace Quoril::Core {

/// A button: triggering it runs the plain callback. It holds no value and is never saved.
class QUORIL_CORE_API CommandProperty : public AbstractProperty {
 public:
    CommandProperty(const std::string& name, PropertyBag* bag);
    ~CommandProperty() override;

    void accept(Util::System::AbstractVisitor& visitor) const override;
    [[nodiscard]] bool getIsWritable() const override;
    [[nodiscard]] bool getIsPersistent() const override;
    /// Gives the empty text.
    void serialize(std::string& text) const override;
    /// Does nothing: restoring must never press a button.
    void deSerialize(const std::string& text) const override;
    /// Triggers, whatever the value.
    void setAny(const Poco::Any& value) override;
    /// An empty Any.
    [[nodiscard]] Poco::Any getAny() const override;

    /// Runs the callback under the property's synchronizer.
    /// @throws Poco::NoPermissionException if the command is not writable
    /// @throws whatever the callback throws
    void trigger();

    void setIsWritable(bool isWritable);

 private:
    bool isWritable_ = true;
};

}  // namespace Quoril::Core
