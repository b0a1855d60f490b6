#pragma once

#include <string>

namespace zel {

inline constexpr int kSegmentSeconds = 2;  // at least; a segment ends at a keyframe
inline constexpr int kSegmentsKept = 15;   // in the list; older ones are deleted

// The names of a playlist's segments, as a printf pattern: "a/NAME.m3u8" has "a/NAME-%05d.ts".
std::string segmentPattern(const std::string& playlist);

// Removes the playlist and the segments of an earlier run.
void forgetSegments(const std::string& playlist);

}  // namespace zel
