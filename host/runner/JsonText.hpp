#pragma once

#include "text/VisibleText.hpp"

#include <string>

#include <nlohmann/json.hpp>

namespace Quoril::Runner {

/// Two blanks a level, a line end at the end; bytes that are not UTF-8 are replaced, and
/// what would steer a terminal is escaped.
[[nodiscard]] inline std::string dumpJson(const nlohmann::ordered_json& json) {
    constexpr auto kReplace = nlohmann::ordered_json::error_handler_t::replace;
    return Texts::toVisibleJson(json.dump(2, ' ', false, kReplace)) + "\n";
}

}  // namespace Quoril::Runner
