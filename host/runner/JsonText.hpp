#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace Quoril::Runner {

/// Two blanks a level, a line end at the end; bytes that are not UTF-8 are replaced.
[[nodiscard]] inline std::string dumpJson(const nlohmann::ordered_json& json) {
    return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace Quoril::Runner
