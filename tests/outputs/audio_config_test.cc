#include "outputs/audio_config.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

namespace zel {
namespace {

std::optional<AudioConfig> parsed(std::uint8_t first, std::uint8_t second) {
  return parseAudioConfig(std::array{first, second});
}

TEST(AudioConfigTest, ReadsRateAndChannels) {
  EXPECT_EQ(parsed(0x11, 0x90), (AudioConfig{48000, 2}));  // 00010 0011 0010 000
  EXPECT_EQ(parsed(0x12, 0x08), (AudioConfig{44100, 1}));  // 00010 0100 0001 000
  EXPECT_EQ(parsed(0x16, 0x38), (AudioConfig{7350, 8}));   // 00010 1100 0111 000
}

TEST(AudioConfigTest, RefusesWhatTheTablesDoNotHold) {
  EXPECT_EQ(parsed(0x16, 0x90), std::nullopt);  // rate 13
  EXPECT_EQ(parsed(0x11, 0x80), std::nullopt);  // no channels
  EXPECT_EQ(parsed(0x11, 0xC0), std::nullopt);  // channels 8
  EXPECT_EQ(parsed(0x29, 0x90), std::nullopt);  // object type 5
}

TEST(AudioConfigTest, RefusesAByteTooFew) {
  EXPECT_EQ(parseAudioConfig({}), std::nullopt);
  EXPECT_EQ(parseAudioConfig(std::array<std::uint8_t, 1>{0x11}), std::nullopt);
}

}  // namespace
}  // namespace zel
