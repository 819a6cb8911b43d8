#pragma once

#include "fuzz/FileHarness.hpp"

namespace Fuzz {

/// Reads a hostile header section: raw, or behind an opening of ours, with a data section of ours
/// and samples behind it or without. What is read has to be written and read again without a
/// change, in the other encoding as well.
void tryHeader(Input input, bool binary);

/// The choices of an input that is a whole file, and of one that is a header without its opening,
/// of version 0x0101 or 0x0100.
inline constexpr char kRawHeader = 0;
inline constexpr char kHeaderBody = 1;
inline constexpr char kOldHeaderBody = 3;

}  // namespace Fuzz
