#pragma once

#include <string>
#include <string_view>

/// Texts that others wrote (names of files, columns, what a file holds), on their way to people.
namespace Texts {

/// The text on one line, as a terminal may show it: characters that steer a terminal, end a line or
/// turn the direction of writing, and bytes that are no UTF-8, are written as \x1b, byte by byte.
/// A backslash stays one: the text is to be read, not to be taken back.
[[nodiscard]] std::string toVisible(std::string_view text);

/// The same for several lines: their ends and tabs stay.
[[nodiscard]] std::string toVisibleLines(std::string_view text);

/// JSON that means the same: such characters in its texts, of which JSON itself demands only some,
/// are written as \u009b.
/// @param json  UTF-8, as it is written by a JSON library; blanks between its parts stay
[[nodiscard]] std::string toVisibleJson(std::string_view json);

}  // namespace Texts
