#include <ZELTarkaSDK/AudioConfig.h>

#include <array>
#include <cstddef>

namespace zel {
namespace {

constexpr std::array kSampleRates = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                     22050, 16000, 12000, 11025, 8000,  7350};
constexpr std::array kChannels = {0, 1, 2, 3, 4, 5, 6, 8};
constexpr unsigned kLowComplexity = 2;

}  // namespace

// object type (5 bits), index of the rate (4), index of the channels (4)
std::optional<AudioConfig> parseAudioConfig(std::span<const std::uint8_t> bytes) {
  if (bytes.size() < 2) return std::nullopt;
  const unsigned word = static_cast<unsigned>(bytes[0]) << 8 | bytes[1];
  const std::size_t rate = word >> 7 & 0xF;
  const std::size_t channels = word >> 3 & 0xF;
  if (word >> 11 != kLowComplexity || rate >= kSampleRates.size()) return std::nullopt;
  if (channels == 0 || channels >= kChannels.size()) return std::nullopt;
  return AudioConfig{kSampleRates[rate], kChannels[channels]};
}

std::optional<std::array<std::uint8_t, 7>> adtsHeaderOf(std::span<const std::uint8_t> config, std::size_t frame) {
  constexpr std::size_t kHeader = 7, kLongest = (1 << 13) - 1;
  if (!parseAudioConfig(config) || frame > kLongest - kHeader) return std::nullopt;
  const unsigned word = static_cast<unsigned>(config[0]) << 8 | config[1];
  const unsigned rate = word >> 7 & 0xF, channels = word >> 3 & 0xF;
  const auto size = static_cast<unsigned>(frame + kHeader);
  const auto byte = [](unsigned value) { return static_cast<std::uint8_t>(value); };
  return std::array{byte(0xFF),
                    byte(0xF1),  // MPEG-4, no checksum
                    byte((kLowComplexity - 1) << 6 | rate << 2 | channels >> 2),
                    byte(channels << 6 | size >> 11),
                    byte(size >> 3),
                    byte(size << 5 | 0x1F),  // a buffer of any fullness
                    byte(0xFC)};
}

}  // namespace zel
