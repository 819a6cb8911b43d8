#pragma once

#include "framework/Functor.hpp"
#include "framework/NamedObject.hpp"
#include "framework/Visitor.hpp"

#include <memory>
#include <string>
#include <type_traits>

#include <Poco/Any.h>

namespace Quoril::Core {

class AbstractProperty;
class PropertyBag;
class Synchronizer;

/// Answers a visitor that offers no visit of a property's class: nothing happens.
struct DefaultPropertyCatchAll {
    static void onUnknownVisitor(const AbstractProperty& /*property*/,
                                 Util::System::AbstractVisitor& /*visitor*/) {}
};

/// Told of a property's changes, under the property's synchronizer, on the changing thread.
class QUORIL_CORE_API PropertyObserver {
 public:
    virtual ~PropertyObserver();
    virtual void valueChanged(const AbstractProperty& property) = 0;
    virtual void attributeChanged(const AbstractProperty& property) = 0;
};

/// A named setting of a filter.
///
/// Its plain callback (no argument) runs after a changed value was stored, then the observers are
/// told. The typed callback of a ValueProperty runs before the store and may refuse the value.
class QUORIL_CORE_API AbstractProperty
    : public Util::System::AbstractVisitable<void, void, DefaultPropertyCatchAll, 1>,
      public NamedObject {
 public:
    using PlainHandler = Util::System::FunctorImpl<void, Util::System::NullType>;

    /// Tells the plain callback and the observers of a change at the end of its scope.
    class QUORIL_CORE_API ScopedChangeValueNotifier {
     public:
        ScopedChangeValueNotifier(const AbstractProperty* property, bool changed);
        /// @throws whatever the plain callback throws, unless an exception is already on its way
        ~ScopedChangeValueNotifier() noexcept(false);
        ScopedChangeValueNotifier(const ScopedChangeValueNotifier&) = delete;
        ScopedChangeValueNotifier& operator=(const ScopedChangeValueNotifier&) = delete;

     private:
        const AbstractProperty* property_;
        bool changed_;
        int exceptionsAtStart_;
    };

    /// @param bag  the owner's bag; null for a property that stands alone and is never locked
    AbstractProperty(const std::string& name, PropertyBag* bag);
    ~AbstractProperty() override;

    void accept(Util::System::AbstractVisitor& visitor) const override;

    /// Whether users may change the value now.
    [[nodiscard]] virtual bool getIsWritable() const = 0;
    /// Whether the host saves and restores the value. Off for switches that start something.
    [[nodiscard]] virtual bool getIsPersistent() const = 0;
    /// Writes the value as text. @throws Poco::DataFormatException
    virtual void serialize(std::string& text) const = 0;
    /// Sets the value from text. @throws Poco::DataFormatException and what the setter throws
    virtual void deSerialize(const std::string& text) const = 0;
    /// Sets the value. @throws Poco::BadCastException if the type differs, and what the setter does
    virtual void setAny(const Poco::Any& value) = 0;
    /// A constant pointer to the stored value (not a copy).
    [[nodiscard]] virtual Poco::Any getAny() const = 0;

    [[nodiscard]] Synchronizer* getSynchronizer() const;

    /// Stores a clone of the handler as the plain callback.
    void attachHandler(const PlainHandler& handler);

    /// Calls owner.function() after each change of the value (for a command: at each trigger). The
    /// function may be one of a base class of the owner's.
    template <class Owner>
    void attach(std::type_identity_t<Owner>& owner, void (Owner::*function)()) {
        attachHandler(Util::System::MemFunHandler<Util::System::NullType, Owner>(owner, function));
    }

    /// Observers must outlive the property or be removed before.
    void addObserver(PropertyObserver& observer);
    void removeObserver(PropertyObserver& observer);

 protected:
    /// True while someone wants to know of changed values: an observer or a plain callback.
    [[nodiscard]] bool hasObservers() const;
    /// Tells the observers that a flag, a range or a list of entries changed.
    void notifyAttributeChanged() const;

 private:
    void notifyValueChanged() const;

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace Quoril::Core
