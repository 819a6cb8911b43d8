#pragma once

#include "framework/ValueProperty.hpp"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Quoril::Core {

/// Told when the entries of an enumeration changed.
class QUORIL_CORE_API EnumEntriesObserver {
 public:
    virtual ~EnumEntriesObserver();
    virtual void entriesChanged() = 0;
};

/// A choice among texts; the value is the index of the chosen entry.
template <class T>
class EnumProperty;

template <>
class QUORIL_TEMPLATE_API EnumProperty<std::string> : public ValueProperty<unsigned int> {
 public:
    EnumProperty(const std::string& name, PropertyBag* bag, unsigned int value = 0)
        : ValueProperty<unsigned int>(name, bag, value) {}

    void accept(Util::System::AbstractVisitor& visitor) const override {
        if (!visitAs(*this, visitor)) AbstractProperty::accept(visitor);
    }

    /// The range is tested before everything else, also on a read-only property. Without entries
    /// every index passes.
    /// @throws Poco::RangeException, without a message, if the index is past the last entry
    void validate(const unsigned int& value) const override {
        if (!entries_.empty() && value >= entries_.size()) throw Poco::RangeException();
        ValueProperty<unsigned int>::validate(value);
    }

    /// Tells that the entries changed.
    virtual void entriesChanged() {
        const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
        if (entriesObserver_) entriesObserver_->entriesChanged();
        notifyAttributeChanged();
    }

    void setEntries(std::vector<std::string> entries) {
        const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
        entries_ = std::move(entries);
        entriesChanged();
    }

    /// Read under the synchronizer.
    [[nodiscard]] const std::vector<std::string>& getEntries() const { return entries_; }

    void setEntriesObserver(std::unique_ptr<EnumEntriesObserver> observer) {
        const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
        entriesObserver_ = std::move(observer);
    }

 private:
    std::vector<std::string> entries_;
    std::unique_ptr<EnumEntriesObserver> entriesObserver_;
};

}  // namespace Quoril::Core
