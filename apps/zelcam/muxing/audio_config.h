#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace zel::app {

// The content of an AudioSpecificConfig.
// Units:  hertz.
struct AudioConfig {
  int rate = 0;
  int channels = 0;

  bool operator==(const AudioConfig&) const = default;
};

inline constexpr int kSamplesPerFrame = 1024;

// Errors: nothing for anything but AAC-LC with a rate and channels from the standard's tables.
std::optional<AudioConfig> parseAudioConfig(std::span<const std::uint8_t> bytes);

}  // namespace zel::app
