#pragma once

#include "framework/Filter.hpp"
#include "host/Flow.hpp"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Bench {

/// Names and serialized texts of properties, in the order in which they are set.
using Settings = std::vector<std::pair<std::string, std::string>>;

/// Makes the host's filters and those of the module known to flows.
void loadFilters();

/// @throws Poco::NotFoundException for a property that the filter does not have
void apply(Quoril::Core::Filter& filter, const Settings& settings);

/// Connects output pins to input pins, in pairs of names.
void connect(Quoril::Core::Flow& flow, Quoril::Core::Filter& from, Quoril::Core::Filter& to,
             const std::vector<std::pair<std::string, std::string>>& pins);

/// @throws Poco::DataException if a full buffer lost anything
void requireNothingLost(const Quoril::Core::Flow& flow);

/// Calls look() every millisecond until the condition holds.
void waitUntil(const std::function<bool()>& condition, const std::function<void()>& look = {});

}  // namespace Bench
