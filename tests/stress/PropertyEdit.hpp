#pragma once

#include "framework/Filter.hpp"

namespace Stress {

class Dice;
struct Surroundings;

/// Gives a random property of the filter a random value, right or wrong, by one of the ways there
/// are, or triggers it. Call under the filter's synchronizer.
/// @throws whatever the property throws
void editProperty(Quoril::Core::Filter& filter, Dice& dice, Surroundings& surroundings);

}  // namespace Stress
