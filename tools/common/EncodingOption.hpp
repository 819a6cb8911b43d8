#pragma once

#include <string>

namespace CLI {
class App;
}

namespace SensorFileTool {

/// The encoding in which a sensor file is written.
class EncodingOption {
 public:
    /// Adds --to.
    void define(CLI::App& app);

    /// @param name  of the file: unless the user said it, a name that ends with ".txt" asks for
    /// text
    [[nodiscard]] bool isBinary(const std::string& name) const;

 private:
    std::string encoding_;
};

}  // namespace SensorFileTool
