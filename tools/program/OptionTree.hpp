#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace SensorFileTool {

/// An option or an argument without a name, as help, manual and completion tell it.
struct OptionEntry {
    std::vector<std::string> names;    ///< "-o", "--output"; of an argument "FILE"
    std::string value;                 ///< "NAME" or "text|binary"; empty if it takes none
    std::vector<std::string> choices;  ///< the only values that there are, if they can be told
    std::string help;
    bool isArgument = false;
    bool isRequired = false;
    bool isRepeatable = false;

    /// "-o, --output NAME" or "FILE...".
    [[nodiscard]] std::string getTitle() const;
};

/// A verb, or the program itself, with what belongs to it.
struct VerbEntry {
    std::string name;  ///< as it is called: "sensorfile calib extract"
    std::string summary;
    std::string footer;
    std::vector<OptionEntry> options;  ///< arguments first
    std::vector<VerbEntry> verbs;

    /// The last word of the name.
    [[nodiscard]] std::string getWord() const;
    /// "sensorfile cut [OPTION...] IN OUT".
    [[nodiscard]] std::string getUsage() const;
};

[[nodiscard]] VerbEntry describeOptions(const CLI::App& app);

/// The help of a verb, in lines of at most 80 characters.
[[nodiscard]] std::string helpText(const VerbEntry& verb);

/// Breaks a text into lines at blanks; its own line ends stay.
[[nodiscard]] std::vector<std::string> wrapText(const std::string& text, std::size_t width);

}  // namespace SensorFileTool
