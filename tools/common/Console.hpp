#pragma once

#include <iosfwd>
#include <string>

namespace SensorFileTool {

/// What the shell gave the program.
struct Console {
    std::istream& input;
    std::ostream& output;      ///< results
    std::ostream& errors;      ///< everything else
    bool hasColor = false;     ///< results go to a terminal, and its user does not mind colours
    bool hasProgress = false;  ///< the rest goes to a terminal
    bool isTerminal = false;   ///< results go to a terminal
};

enum class Color { kGood, kBad, kStrong };

/// A text in a colour, if the console has them; as it is otherwise.
[[nodiscard]] std::string paint(const Console& console, Color color, const std::string& text);

/// Writes "sensorfile: TEXT" to the errors, on one line that steers no terminal.
void tellError(const Console& console, const std::string& text);

}  // namespace SensorFileTool
