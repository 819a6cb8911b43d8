#pragma once

#include "framework/StringProperty.hpp"

namespace Quoril::Core {

/// The name of a file; variables in it are expanded.
class QUORIL_CORE_API FileNameProperty : public StringProperty {
 public:
    FileNameProperty(const std::string& name, PropertyBag* bag);
    ~FileNameProperty() override;

    void accept(Util::System::AbstractVisitor& visitor) const override;

    /// Which files an editor offers, e.g. "*". Read under the synchronizer, as the hints.
    [[nodiscard]] const std::string& getFilter() const { return filter_; }
    void setFilter(const std::string& filter);

    /// Hints for editors: the file must exist, is a folder, is written.
    [[nodiscard]] bool getMustExist() const { return mustExist_; }
    [[nodiscard]] bool getIsFolder() const { return isFolder_; }
    [[nodiscard]] bool getIsWritten() const { return isWritten_; }
    void setHints(bool mustExist, bool isFolder, bool isWritten);

 private:
    std::string filter_ = "*";
    bool mustExist_ = false;
    bool isFolder_ = false;
    bool isWritten_ = false;
};

}  // namespace Quoril::Core
