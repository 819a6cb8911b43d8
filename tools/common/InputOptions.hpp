#pragma once

#include "tools/recording/Recording.hpp"

#include <string>

namespace CLI {
class App;
}

namespace SensorFileTool {

/// How the user says what a file is, where its first bytes are not to say it.
class InputOptions {
 public:
    /// Adds --encoding.
    void define(CLI::App& app);
    /// Adds --kind.
    void defineKind(CLI::App& app);

    [[nodiscard]] EncodingChoice getEncoding() const;
    /// Whether a file is the calibration of a Kivra2 unit, by the user's word or its size.
    /// @throws Poco::FileException (or one derived) naming the file, if it cannot be read
    [[nodiscard]] bool isKivra2Calib(const InputFile& input) const;

 private:
    std::string encoding_ = "auto";
    std::string kind_ = "auto";
};

/// Adds --force: it overwrites files.
void defineForce(CLI::App& app, bool& isForced);

}  // namespace SensorFileTool
