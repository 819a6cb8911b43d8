// Modules built by other compilers call these operations by their place in the virtual table, so
// the order of the declarations must not change. Reads pointers to member functions as the Itanium
// ABI lays them out on x86: the offset in the table, plus one.

#include "framework/DefaultPlugin.hpp"
#include "framework/EnumProperty.hpp"
#include "framework/FileNameProperty.hpp"
#include "framework/Filter.hpp"
#include "framework/FilterFactory.hpp"
#include "framework/InputPin.hpp"
#include "framework/RangeProperty.hpp"
#include "tests/framework/SampleSupport.hpp"

#include <cstddef>
#include <cstring>

#include <gtest/gtest.h>

namespace Quoril::Core {
namespace {

/// The place of an operation, 1 being the destructor, which has two entries of the table.
template <class Class, class Result, class... Arguments>
std::size_t placeOf(Result (Class::*function)(Arguments...)) {
    std::size_t offsetPlusOne = 0;
    static_assert(sizeof(function) >= sizeof(offsetPlusOne));
    std::memcpy(&offsetPlusOne, &function, sizeof(offsetPlusOne));
    EXPECT_EQ(offsetPlusOne % sizeof(void*), 1U) << "not virtual";
    return offsetPlusOne / sizeof(void*);
}
template <class Class, class Result, class... Arguments>
std::size_t placeOf(Result (Class::*function)(Arguments...) const) {
    return placeOf(reinterpret_cast<Result (Class::*)(Arguments...)>(function));
}

TEST(SlotOrder, OfAFilter) {
    class Probe : public Filter {
     public:
        using Filter::setManager;
    };
    EXPECT_EQ(placeOf(&PinManager::process), 2U);
    EXPECT_EQ(placeOf(&Filter::process), 2U);
    EXPECT_EQ(placeOf(&PinManager::getSynchronizer), 3U);
    EXPECT_EQ(placeOf(&Probe::setManager), 4U);
    EXPECT_EQ(placeOf(&Filter::getClassName), 5U);
}

TEST(SlotOrder, OfAFilterFactory) {
    EXPECT_EQ(placeOf(&AbstractFactory<Filter>::destroy), 2U);
    EXPECT_EQ(placeOf(&AbstractFactory<Filter>::name), 3U);
    EXPECT_EQ(placeOf(&AbstractFactory<Filter>::create), 4U);
    EXPECT_EQ(placeOf(&AbstractFilterFactory::create), 4U);
}

TEST(SlotOrder, OfAPlugin) {
    EXPECT_EQ(placeOf(&Plugin::install), 2U);
    EXPECT_EQ(placeOf(&Plugin::uninstall), 3U);
    EXPECT_EQ(placeOf(&Plugin::getMetaData), 4U);
    EXPECT_EQ(placeOf(&DefaultPlugin::getMetaData), 4U);
}

template <class Property>
void expectPropertyOrder() {
    EXPECT_EQ(placeOf(&Property::accept), 2U);
    EXPECT_EQ(placeOf(&Property::getIsWritable), 3U);
    EXPECT_EQ(placeOf(&Property::getIsPersistent), 4U);
    EXPECT_EQ(placeOf(&Property::serialize), 5U);
    EXPECT_EQ(placeOf(&Property::deSerialize), 6U);
    EXPECT_EQ(placeOf(&Property::setAny), 7U);
    EXPECT_EQ(placeOf(&Property::getAny), 8U);
    EXPECT_EQ(placeOf(&Property::validate), 9U);
}

TEST(SlotOrder, OfEveryValueProperty) {
    expectPropertyOrder<ValueProperty<bool>>();
    expectPropertyOrder<ValueProperty<int>>();
    expectPropertyOrder<ValueProperty<unsigned int>>();
    expectPropertyOrder<ValueProperty<short>>();
    expectPropertyOrder<ValueProperty<double>>();
    expectPropertyOrder<ValueProperty<std::string>>();
    expectPropertyOrder<RangeProperty<int>>();
    expectPropertyOrder<EnumProperty<std::string>>();
    expectPropertyOrder<StringProperty>();
    expectPropertyOrder<FileNameProperty>();
}

TEST(SlotOrder, OfAnEnumerationsList) {
    EXPECT_EQ(placeOf(&EnumProperty<std::string>::entriesChanged), 10U);
}

TEST(SlotOrder, OfCallbacks) {
    using Util::System::FunctorImpl;
    using Util::System::NullType;
    using Util::System::Seq;
    EXPECT_EQ(placeOf(&FunctorImpl<void, NullType>::clone), 2U);
    EXPECT_EQ(placeOf(&FunctorImpl<void, NullType>::call), 3U);
    EXPECT_EQ(placeOf(&FunctorImpl<void, Seq<const bool&>>::clone), 2U);
    EXPECT_EQ(placeOf(&FunctorImpl<void, Seq<const bool&>>::call), 3U);
}

TEST(SlotOrder, OfATypedInputPin) {
    using Input = InputPinBase<Eigen::MatrixXd>;
    EXPECT_EQ(placeOf(&Input::clear), 2U);
    EXPECT_EQ(placeOf(&Input::rebuildBufferStrategy), 3U);
    EXPECT_EQ(placeOf(&Input::setOutputPin), 4U);
    EXPECT_EQ(placeOf(&Input::push), 5U);
}

TEST(SlotOrder, OfABufferStrategy) {
    using Strategy = AbstractBufferStrategy<FrameworkTest::Sample>;
    EXPECT_EQ(placeOf(&Strategy::push), 2U);
    EXPECT_EQ(placeOf(&Strategy::pop), 3U);
    EXPECT_EQ(placeOf(&Strategy::clear), 4U);
    EXPECT_EQ(placeOf(&Strategy::capacity), 5U);
    EXPECT_EQ(placeOf(&Strategy::isEmpty), 6U);
    EXPECT_EQ(placeOf(&Strategy::size), 7U);
}

}  // namespace
}  // namespace Quoril::Core
