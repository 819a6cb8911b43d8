#pragma once

#include "framework/Filter.hpp"

namespace Stress {

class Dice;
class Graph;

/// Sets a recorder up and switches it on, or switches it off if it records. Other filters are left
/// alone. Call under the edit gate.
/// @throws whatever its properties throw
void toggleRecording(Graph& graph, Quoril::Core::Filter& recorder, Dice& dice);

}  // namespace Stress
