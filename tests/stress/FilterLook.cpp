#include "tests/stress/FilterLook.hpp"

#include "framework/AbstractProperty.hpp"
#include "framework/Synchronizer.hpp"
#include "tests/stress/StressFilters.hpp"

#include <algorithm>
#include <array>
#include <string_view>

#include <Poco/Exception.h>

namespace Stress {

using Quoril::Core::Filter;

namespace {

/// Classes of filters whose pins keep the size of their samples.
constexpr std::array<std::string_view, 4> kSteadyClasses{
    NumberSource::kClassName, "FilterImuSimulator", "FilterReplaySensorFile",
    "FilterReplayKivra2Format"};

}  // namespace

std::string textOf(const Filter& filter, const std::string& property) {
    const Quoril::Core::AbstractProperty* found = filter.getPropertyBag()->find(property);
    if (found == nullptr) throw Poco::NotFoundException(filter.getName(), property);
    std::string text;
    found->serialize(text);
    return text;
}

std::size_t sampleSizeOf(const Quoril::Core::AbstractOutputPin& output) {
    const auto* filter = dynamic_cast<const Filter*>(output.getManager());
    const auto* typed = dynamic_cast<const MatrixOutput*>(&output);
    if (filter == nullptr || typed == nullptr) return 0;
    if (std::find(kSteadyClasses.begin(), kSteadyClasses.end(), filter->getClassName()) ==
        kSteadyClasses.end())
        return 0;
    const Quoril::Core::Synchronizer::DisablerLocker lock(output.getSynchronizer(), nullptr);
    return static_cast<std::size_t>(typed->getSample().value.size());
}

}  // namespace Stress
