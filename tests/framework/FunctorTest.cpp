#include "framework/Functor.hpp"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Util::System {
namespace {

using testing::ElementsAre;

struct Owner {
    void nothing() { calls.emplace_back("nothing"); }
    void flag(const bool& value) {
        calls.emplace_back(value ? "true" : "false");
        address = &value;
    }
    void text(const std::string& value) {
        calls.push_back(value);
        address = &value;
    }

    std::vector<std::string> calls;
    const void* address = nullptr;
};

TEST(MemFunHandler, CallsTheOwnersFunction) {
    Owner owner;
    MemFunHandler<NullType, Owner>(owner, &Owner::nothing).call();
    MemFunHandler<Seq<const bool&>, Owner>(owner, &Owner::flag).call(true);
    MemFunHandler<Seq<const std::string&>, Owner>(owner, &Owner::text).call("name");
    EXPECT_THAT(owner.calls, ElementsAre("nothing", "true", "name"));
}

TEST(MemFunHandler, CloneOutlivesItsOriginalAndCallsTheSameOwner) {
    Owner owner;
    std::unique_ptr<FunctorImpl<void, NullType>> plain;
    std::unique_ptr<FunctorImpl<void, Seq<const bool&>>> flag;
    {
        const MemFunHandler<NullType, Owner> plainOriginal(owner, &Owner::nothing);
        const MemFunHandler<Seq<const bool&>, Owner> flagOriginal(owner, &Owner::flag);
        plain = plainOriginal.clone();
        flag = flagOriginal.clone();
        EXPECT_NE(plain.get(), &plainOriginal);
    }
    plain->call();
    flag->call(false);
    EXPECT_THAT(owner.calls, ElementsAre("nothing", "false"));
}

/// Counts the living, and does something when called.
class Counted : public FunctorImpl<void, NullType> {
 public:
    static int living;

    explicit Counted(std::vector<std::string>& notes, std::string name)
        : notes_(notes), name_(std::move(name)) {
        ++living;
    }
    Counted(const Counted& other)
        : FunctorImpl(other), replace(other.replace), notes_(other.notes_), name_(other.name_) {
        ++living;
    }
    Counted& operator=(const Counted&) = delete;
    ~Counted() override { --living; }
    std::unique_ptr<FunctorImpl<void, NullType>> clone() const override {
        return std::make_unique<Counted>(*this);
    }
    void call() override {
        if (replace) replace->assign(Counted(notes_, "replacement"));
        notes_.push_back(name_);
    }

    Functor<void>* replace = nullptr;

 private:
    std::vector<std::string>& notes_;
    const std::string name_;
};
int Counted::living = 0;

TEST(Functor, CallsNothingUntilItIsAssigned) {
    const Functor<void> functor;
    EXPECT_FALSE(functor.isSet());
    functor.call();
}

TEST(Functor, OwnsOneCloneAndDeletesTheEarlierOne) {
    std::vector<std::string> notes;
    {
        Functor<void> functor;
        functor.assign(Counted(notes, "first"));
        EXPECT_TRUE(functor.isSet());
        EXPECT_EQ(Counted::living, 1);
        functor.call();
        functor.assign(Counted(notes, "second"));
        EXPECT_EQ(Counted::living, 1);
        functor.call();
    }
    EXPECT_EQ(Counted::living, 0);
    EXPECT_THAT(notes, ElementsAre("first", "second"));
}

TEST(Functor, RunningCallbackSurvivesItsReplacement) {
    std::vector<std::string> notes;
    Functor<void> functor;
    Counted original(notes, "original");
    original.replace = &functor;
    functor.assign(original);
    functor.call();
    functor.call();
    EXPECT_THAT(notes, ElementsAre("original", "replacement"));
}

TEST(Functor, HandsReferencesOnWithoutACopy) {
    Owner owner;
    Functor<void, Seq<const std::string&>> functor;
    functor.assign(MemFunHandler<Seq<const std::string&>, Owner>(owner, &Owner::text));
    const std::string value = "path";
    functor.call(value);
    EXPECT_EQ(owner.address, &value);
}

}  // namespace
}  // namespace Util::System
