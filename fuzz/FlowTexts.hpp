#pragma once

#include "host/runner/FlowModel.hpp"
#include "host/runner/Problems.hpp"

#include <optional>
#include <string>

namespace Fuzz {

/// Everything that a model says, as a text to be compared.
/// @param hasPlaces  with the places from which it comes
[[nodiscard]] std::string describeModel(const Quoril::Runner::FlowModel& model, bool hasPlaces);

/// A flow file that says the same, with every text in quotation marks; nothing if the model is too
/// large for one, or has times that cannot be written exactly.
[[nodiscard]] std::optional<std::string> writeFlow(const Quoril::Runner::FlowModel& model);

/// Fails if a model without errors is none that can be run.
void checkModel(const Quoril::Runner::FlowModel& model);

/// Fails if a problem is said to be elsewhere than in the text.
void checkPlaces(const Quoril::Runner::Problems& problems, const std::string& source,
                 const std::string& text);

}  // namespace Fuzz
