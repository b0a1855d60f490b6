#include <ZELTarkaSDK/AudioConfig.h>

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

TEST(AdtsHeader, TellsTheConfigAndTheLengthWithItself) {
  const std::vector<std::uint8_t> stereo = {0x11, 0x90};     // AAC-LC, 48 kHz, 2 channels
  const std::array<std::uint8_t, 7> expected = {0xFF, 0xF1,  // MPEG-4, no checksum
                                                0x4C, 0x80,  // AAC-LC, rate 3, 2 channels
                                                0x0D, 0x7F,  // 107 bytes
                                                0xFC};
  EXPECT_EQ(adtsHeaderOf(stereo, 100), expected);
  EXPECT_TRUE(adtsHeaderOf(stereo, 8184));
  EXPECT_FALSE(adtsHeaderOf(stereo, 8185));
  EXPECT_FALSE(adtsHeaderOf({}, 100));
}

}  // namespace
}  // namespace zel
