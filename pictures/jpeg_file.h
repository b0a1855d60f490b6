#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include <ZELTarkaSDK/PictureFile.h>

namespace zel {

using JpegBytes = std::vector<std::uint8_t>;

inline constexpr int kJpegQuality = 95;
// A file of a few bytes may claim to be a picture of any size, and to be made in any number of passes. With these a
// panorama takes less than 1 GiB and a few seconds.
inline constexpr std::int64_t kMostJpegPixels = 72'000'000;
inline constexpr std::int64_t kMostProgressivePixels = 40'000'000;  // of a picture of several scans: all of it is held
inline constexpr std::int64_t kMostScannedPixels = 400'000'000;     // of such a picture, those of all scans together

// The first segment with EXIF data, from its marker to its end; empty if the file has none before its image data.
std::span<const std::uint8_t> exifSegmentIn(std::span<const std::uint8_t> file);

// A segment with an XMP packet.
//
// Errors: empty for a packet that is too long for one.
JpegBytes xmpSegmentOf(std::string_view packet);

// The file with those segments inserted after its first header.
//
// Errors: the unchanged file if it is no JPEG file.
JpegBytes withSegments(std::span<const std::uint8_t> file, std::span<const std::span<const std::uint8_t>> segments);

}  // namespace zel
