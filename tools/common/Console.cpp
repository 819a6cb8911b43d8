#include "tools/common/Console.hpp"

#include "text/VisibleText.hpp"

#include <ostream>

namespace SensorFileTool {

namespace {

const char* beginOf(Color color) {
    switch (color) {
        case Color::kGood:
            return "\x1b[32m";
        case Color::kBad:
            return "\x1b[31m";
        default:
            return "\x1b[1m";
    }
}

}  // namespace

std::string paint(const Console& console, Color color, const std::string& text) {
    if (!console.hasColor) return text;
    return beginOf(color) + text + "\x1b[0m";
}

void tellError(const Console& console, const std::string& text) {
    console.errors << "sensorfile: " << Texts::toVisible(text) << '\n';
}

}  // namespace SensorFileTool
