#pragma once

#include "framework/AbstractProperty.hpp"
#include "framework/Synchronizer.hpp"

#include <locale>
#include <sstream>
#include <string>
#include <type_traits>

#include <Poco/Exception.h>

namespace Quoril::Core {

/// A property that holds one value of type T.
///
/// T is bool, int, unsigned int, short, double or std::string. All operations lock the property's
/// synchronizer, so that edits and processing calls exclude each other; only what getAny() points
/// to is the caller's to protect.
template <class T>
class QUORIL_TEMPLATE_API ValueProperty : public AbstractProperty {
 public:
    using ValueHandler = Util::System::FunctorImpl<void, Util::System::Seq<const T&>>;

    ValueProperty(const std::string& name, PropertyBag* bag, const T& value = T())
        : AbstractProperty(name, bag), value_(value) {}
    ~ValueProperty() override = default;

    void accept(Util::System::AbstractVisitor& visitor) const override {
        if (!visitAs(*this, visitor)) AbstractProperty::accept(visitor);
    }
    [[nodiscard]] bool getIsWritable() const override {
        const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
        return isWritable_;
    }
    [[nodiscard]] bool getIsPersistent() const override {
        const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
        return isPersistent_;
    }

    /// Default stream output in the classic locale: a double keeps six significant digits, a bool
    /// is 1 or 0.
    void serialize(std::string& text) const override {
        const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
        std::ostringstream stream;
        stream.imbue(std::locale::classic());
        stream << value_;
        if (stream.fail()) throw Poco::DataFormatException();
        text = stream.str();
    }

    /// Reads one value by stream input: leading blanks are skipped, what follows the value is
    /// ignored.
    void deSerialize(const std::string& text) const override {
        std::istringstream stream(text);
        stream.imbue(std::locale::classic());
        T value{};
        stream >> value;
        if (stream.fail()) throw Poco::DataFormatException();
        // Restoring a value changes the property although the host holds it as constant.
        const_cast<ValueProperty*>(this)->set(value);
    }

    void setAny(const Poco::Any& value) override { set(Poco::AnyCast<T>(value)); }

    [[nodiscard]] Poco::Any getAny() const override {
        return Poco::Any(static_cast<const T*>(&value_));
    }

    /// Accepts or refuses a new value. A typed callback runs here, with the new value, before it
    /// is stored: it does real work (opens a file, say), so never call this just to ask.
    /// @throws Poco::NoPermissionException if the property is not writable
    /// @throws whatever the typed callback throws to refuse the value
    virtual void validate(const T& value) const {
        if (!isWritable_)
            throw Poco::NoPermissionException("Property '" + getName() + "' is not writable");
        callback_.call(value);
    }

    /// Stores a new value and tells of the change; a refused value leaves the old one.
    void set(const T& value) {
        const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
        validate(value);
        const bool changed = hasObservers() && value_ != value;
        const ScopedChangeValueNotifier notifier(this, changed);
        value_ = value;
    }

    [[nodiscard]] T get() const {
        const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
        return value_;
    }

    void setIsWritable(bool isWritable) {
        const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
        isWritable_ = isWritable;
        notifyAttributeChanged();
    }

    void setIsPersistent(bool isPersistent) {
        const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
        isPersistent_ = isPersistent;
        notifyAttributeChanged();
    }

    using AbstractProperty::attach;

    /// Calls owner.function(newValue) before each store, on the setting thread.
    template <class Owner>
    void attach(std::type_identity_t<Owner>& owner, void (Owner::*function)(const T&)) {
        const Synchronizer::DisablerLocker lock(getSynchronizer(), nullptr);
        callback_.assign(
            Util::System::MemFunHandler<Util::System::Seq<const T&>, Owner>(owner, function));
    }

 private:
    T value_;
    bool isPersistent_ = true;
    bool isWritable_ = true;
    Util::System::Functor<void, Util::System::Seq<const T&>> callback_;
};

}  // namespace Quoril::Core
