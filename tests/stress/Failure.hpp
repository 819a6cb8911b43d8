#pragma once

#include <string>

namespace Stress {

/// Tells what went wrong and ends the process at once, from any thread: what has gone wrong between
/// threads is best looked at as it was then.
[[noreturn]] void fail(const std::string& what);

/// From now on the folder is removed when the program fails: it is meant to. Else what a failure
/// leaves behind is worth a look.
void removeAtFailure(const std::string& folder);
/// What fail() does before it ends the process.
void tellFailure(const std::string& what);

/// Writes a line for the user: the standard streams are the filters'.
void say(const std::string& line);

}  // namespace Stress
