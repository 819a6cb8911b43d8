#pragma once

#include "framework/ValueProperty.hpp"

namespace Quoril::Core {

/// A text. It is saved and restored whole, as it was typed.
class QUORIL_CORE_API StringProperty : public ValueProperty<std::string> {
 public:
    StringProperty(const std::string& name, PropertyBag* bag);
    ~StringProperty() override;

    void accept(Util::System::AbstractVisitor& visitor) const override;
    void serialize(std::string& text) const override;
    void deSerialize(const std::string& text) const override;
    void validate(const std::string& value) const override;

    /// A copy of the text; with variable expansion on, "~" and "$NAME" or "${NAME}" of the
    /// environment are replaced as Poco::Path::expand does.
    [[nodiscard]] std::string get() const;

    void setExpandVariables(bool expand);
    /// Read under the synchronizer.
    [[nodiscard]] bool getExpandVariables() const { return expandVariables_; }

 private:
    bool expandVariables_ = false;
};

}  // namespace Quoril::Core
