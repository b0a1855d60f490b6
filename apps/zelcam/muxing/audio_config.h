#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace zel::app {

// What an AudioSpecificConfig says.
// Units:  hertz.
struct AudioConfig {
  int rate = 0;
  int channels = 0;

  bool operator==(const AudioConfig&) const = default;
};

inline constexpr int kSamplesPerFrame = 1024;

// Errors: nothing for anything but plain AAC with a rate and channels of the standard's tables.
std::optional<AudioConfig> parseAudioConfig(std::span<const std::uint8_t> bytes);

}  // namespace zel::app
