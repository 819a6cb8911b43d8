#pragma once

#include "framework/Export.hpp"

#include <memory>
#include <utility>

namespace Util::System {

/// Parameter list of a callback without arguments.
struct NullType {};

/// Parameter list of a callback with arguments.
template <class... Args>
struct Seq {};

/// An owned callable; the parameter list is NullType or a Seq.
template <class R, class Params = NullType>
class FunctorImpl;

template <class R>
class QUORIL_TEMPLATE_API FunctorImpl<R, NullType> {
 public:
    virtual ~FunctorImpl() = default;
    [[nodiscard]] virtual std::unique_ptr<FunctorImpl> clone() const = 0;
    virtual R call() = 0;
};

template <class R, class... Args>
class QUORIL_TEMPLATE_API FunctorImpl<R, Seq<Args...>> {
 public:
    virtual ~FunctorImpl() = default;
    [[nodiscard]] virtual std::unique_ptr<FunctorImpl> clone() const = 0;
    virtual R call(Args... args) = 0;
};

/// Calls a member function of an owner object, which must outlive the handler.
template <class Params, class Owner>
class MemFunHandler;

template <class Owner>
class MemFunHandler<NullType, Owner> final : public FunctorImpl<void, NullType> {
 public:
    using Function = void (Owner::*)();
    MemFunHandler(Owner& owner, Function function) : owner_(&owner), function_(function) {}
    [[nodiscard]] std::unique_ptr<FunctorImpl<void, NullType>> clone() const override {
        return std::make_unique<MemFunHandler>(*this);
    }
    void call() override { (owner_->*function_)(); }

 private:
    Owner* owner_ = nullptr;
    Function function_ = nullptr;
};

template <class Arg, class Owner>
class MemFunHandler<Seq<Arg>, Owner> final : public FunctorImpl<void, Seq<Arg>> {
 public:
    using Function = void (Owner::*)(Arg);
    MemFunHandler(Owner& owner, Function function) : owner_(&owner), function_(function) {}
    [[nodiscard]] std::unique_ptr<FunctorImpl<void, Seq<Arg>>> clone() const override {
        return std::make_unique<MemFunHandler>(*this);
    }
    void call(Arg arg) override { (owner_->*function_)(arg); }

 private:
    Owner* owner_ = nullptr;
    Function function_ = nullptr;
};

/// A slot for one callback. Replacing the callback while it runs is safe: the running one lives
/// until it returns.
template <class R, class Params = NullType>
class Functor {
 public:
    using Impl = FunctorImpl<R, Params>;

    [[nodiscard]] bool isSet() const noexcept { return impl_ != nullptr; }

    /// Stores a clone of the handler; an earlier callback is released.
    void assign(const Impl& handler) { impl_ = handler.clone(); }

    template <class... Args>
    void call(Args&&... args) const {
        const std::shared_ptr<Impl> running = impl_;
        if (running) running->call(std::forward<Args>(args)...);
    }

 private:
    std::shared_ptr<Impl> impl_;
};

}  // namespace Util::System
