#pragma once

#include <cstddef>
#include <string>

namespace Stress {

// What only the operating system can do. THIS FILE'S IMPLEMENTATIONS ARE ONE A SYSTEM.

/// Sends the process's standard output to nowhere: recorders tell of every wrong row there.
void silenceStandardOutput();

/// Makes the process able to write the stacks of its threads. Call once, before threads start.
void prepareStackDump();
/// Writes the stack of every thread of the process to the standard error, one after the other; a
/// thread that does not answer within a second is told by its name alone.
void writeAllStacks();
/// The name under which the calling thread appears there; 15 characters count.
void nameThisThread(const std::string& name);

/// Bytes that the program has allocated and not freed.
[[nodiscard]] std::size_t countHeapBytes();
/// Bytes of the process in the machine's memory; 0 if the system does not tell.
[[nodiscard]] std::size_t countResidentBytes();

/// A file that takes everything that is written and keeps nothing.
[[nodiscard]] const char* nullFile();

}  // namespace Stress
