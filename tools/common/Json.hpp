#pragma once

#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

namespace SensorFileTool {

/// Objects keep the order in which their keys were added.
using Json = nlohmann::ordered_json;

/// A number, or as text what JSON has no number for: "nan", "inf", "-inf".
[[nodiscard]] Json jsonNumber(double value);
/// A number, or as text above 2^53, which readers that know doubles only would round.
[[nodiscard]] Json jsonInteger(std::uint64_t value);
/// On one line with a line end. Bytes that are no UTF-8, which names of files and columns may hold,
/// are replaced; what would steer a terminal is escaped.
[[nodiscard]] std::string jsonLine(const Json& json);

}  // namespace SensorFileTool
