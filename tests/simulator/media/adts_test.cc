#include "simulator/media/adts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zel::simulator {
namespace {

using testing::ElementsAre;

// Frames of 9 and 8 bytes; 16 kHz (number 8), one channel.
const Bytes kFile{0xFF, 0xF1, 0x60, 0x40, 0x01, 0x3F, 0xFC, 0xAA, 0xBB,  //
                  0xFF, 0xF1, 0x60, 0x40, 0x01, 0x1F, 0xFC, 0xCC};

TEST(AdtsTest, CutsFrames) {
  const AudioTrack track = framesIn(kFile);
  EXPECT_EQ(track.sampleRate, 16000);
  EXPECT_DOUBLE_EQ(track.secondsPerFrame(), 0.064);
  EXPECT_THAT(track.frames,
              ElementsAre(Bytes(kFile.begin(), kFile.begin() + 9), Bytes(kFile.begin() + 9, kFile.end())));
}

TEST(AdtsTest, LeavesOutAFrameThatIsCutOff) {
  for (std::size_t size = 0; size <= kFile.size(); ++size)
    EXPECT_EQ(framesIn({kFile.data(), size}).frames.size(), size < 9 ? 0u : size < 17 ? 1u : 2u) << size;
}

TEST(AdtsTest, StopsAtALengthThatCannotBe) {
  Bytes file = kFile;
  file[13] = 0;
  file[14] = 0xDF;  // 6 bytes, less than the header
  EXPECT_EQ(framesIn(file).frames.size(), 1u);
  file[14] = 0x1F;  // 0 bytes
  EXPECT_EQ(framesIn(file).frames.size(), 1u);
}

TEST(AdtsTest, TakesNothingElse) {
  EXPECT_TRUE(framesIn(Bytes(100, 0)).frames.empty());
  Bytes file = kFile;
  file[2] = 0x7C;  // rate number 15
  EXPECT_TRUE(framesIn(file).frames.empty());
}

TEST(AdtsTest, WritesAHeader) {
  // 300 + 7 = 307 bytes: 00 00100110 011
  EXPECT_THAT(adtsHeader(300), ElementsAre(0xFF, 0xF1, 0x4C, 0x80, 0x26, 0x7F, 0xFC));
}

}  // namespace
}  // namespace zel::simulator
