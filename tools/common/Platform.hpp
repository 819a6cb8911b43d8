#pragma once

#include <string>
#include <system_error>

/// What the tool asks of the operating system beyond POCO and the standard library.
namespace SensorFileTool::Platform {

/// Whether the standard output or the standard error is a terminal.
[[nodiscard]] bool isOutputTerminal();
[[nodiscard]] bool isErrorTerminal();

/// Binary data go through the standard streams unchanged, and closed pipes and files that may not
/// grow are errors, not signals.
void prepareStandardStreams();

/// Creates an empty file; what is there already is no success.
/// @param isPrivate  nobody else may read it
std::error_code createFile(const std::string& path, bool isPrivate);

/// The file is removed if the program is ended by the user (Ctrl-C, SIGTERM, SIGHUP).
/// Of a few files at a time.
void removeOnInterrupt(const std::string& path);
/// It is removed no longer.
void keepOnInterrupt(const std::string& path);

}  // namespace SensorFileTool::Platform
