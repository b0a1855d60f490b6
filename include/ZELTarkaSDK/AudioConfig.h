#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// What an AudioSpecificConfig says, as StreamHeaders and the media delegates have it.
//
// Units: hertz.
struct ZEL_EXPORT AudioConfig {
  int rate = 0;
  int channels = 0;

  bool operator==(const AudioConfig&) const = default;
};

// Samples of a frame of AAC, of each channel.
inline constexpr int kSamplesPerFrame = 1024;

// Errors: nothing for anything but AAC-LC with a rate and channels of the standard's tables.
ZEL_EXPORT std::optional<AudioConfig> parseAudioConfig(std::span<const std::uint8_t> bytes);

// The ADTS header that stands before a frame of so many bytes in an .aac file. config: the AudioSpecificConfig.
//
// Units: bytes, the header not counted.
//
// Errors: nothing where the config cannot be parsed, or the frame is longer than 8184 bytes, which is all that fits.
ZEL_EXPORT std::optional<std::array<std::uint8_t, 7>> adtsHeaderOf(std::span<const std::uint8_t> config,
                                                                   std::size_t frame);

}  // namespace zel
