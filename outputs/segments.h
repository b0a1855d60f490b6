#pragma once

#include <string>

namespace zel {

inline constexpr int kSegmentSeconds = 2;  // at least; a segment ends where a key picture comes
inline constexpr int kSegmentsKept = 15;   // in the list; those that have left it are removed

// The names of a playlist's segments, with their number as printf has it: "a/NAME.m3u8" has "a/NAME-%05d.ts".
std::string segmentPattern(const std::string& playlist);

// Removes the playlist and the segments that an earlier run left beside it.
void forgetSegments(const std::string& playlist);

}  // namespace zel
