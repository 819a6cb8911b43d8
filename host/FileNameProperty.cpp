#include "framework/FileNameProperty.hpp"

namespace Quoril::Core {

FileNameProperty::FileNameProperty(const std::string& name, PropertyBag* bag)
    : StringProperty(name, bag) {
    setExpandVariables(true);
}
FileNameProperty::~FileNameProperty() = default;

void FileNameProperty::accept(Util::System::AbstractVisitor& visitor) const {
    if (!visitAs(*this, visitor)) AbstractProperty::accept(visitor);
}

void FileNameProperty::setFilter(const std::string& filter) {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    filter_ = filter;
    notifyAttributeChanged();
}

void FileNameProperty::setHints(bool mustExist, bool isFolder, bool isWritten) {
    const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
    mustExist_ = mustExist;
    isFolder_ = isFolder;
    isWritten_ = isWritten;
    notifyAttributeChanged();
}

}  // namespace Quoril::Core
