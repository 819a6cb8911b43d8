#include "tools/common/EncodingOption.hpp"

#include <CLI/App.hpp>

namespace SensorFileTool {

void EncodingOption::define(CLI::App& app) {
    app.add_option("--to", encoding_,
                   "The encoding of OUT; by itself text if its name ends with .txt, else binary")
        ->type_name("text|binary")
        ->check(CLI::IsMember({"text", "binary"}));
}

bool EncodingOption::isBinary(const std::string& name) const {
    return encoding_.empty() ? !name.ends_with(".txt") : encoding_ == "binary";
}

}  // namespace SensorFileTool
