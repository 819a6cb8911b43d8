#pragma once

/// What a filter tells of a recording that it ends by itself, from within a processing call, where
/// nobody can be given an exception: one message of priority "error" on POCO's logger of the
/// filter's class, written before "Record" turns false, on the same thread. Beside a text for
/// people, the message carries parameters for programs.
namespace Quoril::Core::ErrorLog {

/// Parameter: the name of the filter.
inline constexpr const char* kFilter = "filter";
/// Parameter: why, in the system's words: "No space left on device".
inline constexpr const char* kCause = "cause";
/// Parameter: what would not do: the file, or what was to be written into it.
inline constexpr const char* kCulprit = "culprit";
inline constexpr const char* kFile = "file";
inline constexpr const char* kContent = "content";

}  // namespace Quoril::Core::ErrorLog
