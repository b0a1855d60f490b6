#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel::app {

using JpegBytes = std::vector<std::uint8_t>;

inline constexpr std::int64_t kMostJpegPixels = 150'000'000;  // limits the memory that a damaged header can cause

// The picture of a JPEG file.
// Errors: null; `error` then says what is wrong with the file.
platform::PixelBufferRef pictureOfJpeg(std::span<const std::uint8_t> file, std::string& error);

// A picture of even sides as a JPEG file. quality: 1 to 100.
// Errors: nothing if the picture is too large for the format or the memory.
std::optional<JpegBytes> jpegOf(const platform::PixelBuffer& picture, int quality);

// The first segment with EXIF data, from its marker to its end; empty if the file has none before its image data.
std::span<const std::uint8_t> exifSegmentIn(std::span<const std::uint8_t> file);

// A segment with an XMP packet.
// Errors: empty for a packet that is too long for one.
JpegBytes xmpSegmentOf(std::string_view packet);

// The file with those segments inserted after its first header.
// Errors: the unchanged file if it is no JPEG file.
JpegBytes withSegments(std::span<const std::uint8_t> file, std::span<const std::span<const std::uint8_t>> segments);

}  // namespace zel::app
