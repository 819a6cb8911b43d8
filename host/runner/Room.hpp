#pragma once

#include <string>

namespace Quoril::Core {
class AbstractProperty;
class Filter;
}  // namespace Quoril::Core

namespace Quoril::Runner {

/// Why a file cannot be written anew: the path, and what the system says of its disk: "/data/a.bin:
/// No space left on device, 0 bytes are free". Empty if it can. Filters empty a file that is there
/// before they find out: what was in it would be lost.
/// @param path  absolute; empty: no file
/// @param isRecording  it is to grow, and not small
[[nodiscard]] std::string findLackOfRoom(const std::string& path, bool isRecording);

/// The same of all files that a filter would write anew if the property were set to the text, or if
/// the command were called: a recording that begins, a command, and a name of a file that has
/// neither to wait for.
[[nodiscard]] std::string findLackOfRoom(const Core::Filter& filter,
                                         const Core::AbstractProperty& property,
                                         const std::string& text);

/// True if the filter writes a file as soon as it learns its name: nothing else could start it.
[[nodiscard]] bool writesAtOnce(const Core::Filter& filter);

}  // namespace Quoril::Runner
