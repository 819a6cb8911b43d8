#include "tools/common/InputOptions.hpp"

#include "tools/common/FileKind.hpp"

#include <CLI/App.hpp>

namespace SensorFileTool {

void InputOptions::define(CLI::App& app) {
    app.add_option("--encoding", encoding_, "The files' encoding; auto: by their first bytes")
        ->type_name("text|binary|auto")
        ->check(CLI::IsMember({"text", "binary", "auto"}));
}

void InputOptions::defineKind(CLI::App& app) {
    app.add_option("--kind", kind_,
                   "What the files are; auto: a Kivra2 calibration file is told by its size")
        ->type_name("sensor|kivra2|auto")
        ->check(CLI::IsMember({"sensor", "kivra2", "auto"}));
}

bool InputOptions::isKivra2Calib(const InputFile& input) const {
    if (kind_ != "auto") return kind_ == "kivra2";
    return !getEncoding() && detectKind(input) == FileKind::kKivra2Calib;
}

EncodingChoice InputOptions::getEncoding() const {
    if (encoding_ == "auto") return std::nullopt;
    return encoding_ == "binary";
}

void defineForce(CLI::App& app, bool& isForced) {
    app.add_flag("--force", isForced, "Overwrite a file that is there already");
}

}  // namespace SensorFileTool
