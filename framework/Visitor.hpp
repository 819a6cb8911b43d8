#pragma once

#include "framework/Export.hpp"

namespace Util::System {

/// Base of every visitor; a visitable finds out by a dynamic type test which visits it offers.
class QUORIL_TEMPLATE_API AbstractVisitor {
 public:
    virtual ~AbstractVisitor() = default;
};

/// Offers a visit of T. ConstVisit 1: the object is visited as constant. The parameter list is
/// void: a visit takes nothing but the object.
template <class T, class R, class Param, int ConstVisit>
class Visitor;

template <class T, class R>
class QUORIL_TEMPLATE_API Visitor<T, R, void, 1> : public virtual AbstractVisitor {
 public:
    virtual R visit(const T& object) = 0;
};

/// Base of objects that take visitors. CatchAll::onUnknownVisitor answers a visitor that knows
/// nothing of the object.
template <class R, class Param, class CatchAll, int ConstVisit>
class AbstractVisitable;

template <class R, class CatchAll>
class QUORIL_TEMPLATE_API AbstractVisitable<R, void, CatchAll, 1> {
 public:
    virtual ~AbstractVisitable() = default;
    virtual R accept(AbstractVisitor& visitor) const = 0;

 protected:
    /// Visits object when the visitor offers a visit of exactly T.
    template <class T>
    static bool visitAs(const T& object, AbstractVisitor& visitor) {
        auto* typed = dynamic_cast<Visitor<T, R, void, 1>*>(&visitor);
        if (typed == nullptr) return false;
        typed->visit(object);
        return true;
    }
};

}  // namespace Util::System
