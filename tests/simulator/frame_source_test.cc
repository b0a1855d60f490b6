#include "simulator/frame_source.h"

#include <gmock/gmock.h>

namespace zel::simulator {
namespace {

using testing::ElementsAre;

struct Cut {
  std::uint16_t type;
  Bytes payload;
};

std::vector<Cut> framesIn(const Bytes& bytes) {
  std::vector<Cut> frames;
  for (std::size_t at = 0; at + 6 <= bytes.size();) {
    const std::size_t length = numberAt<std::uint32_t>(bytes, at);
    if (length < 6 || at + length > bytes.size()) return {};
    const std::span<const std::uint8_t> all = bytes;
    frames.push_back({numberAt<std::uint16_t>(bytes, at + 4), copyOf(all.subspan(at + 6, length - 6))});
    at += length;
  }
  return frames;
}

std::vector<std::uint16_t> typesIn(const Bytes& bytes) {
  std::vector<std::uint16_t> types;
  for (const Cut& cut : framesIn(bytes)) types.push_back(cut.type);
  return types;
}

TEST(FrameSourceTest, SetsTheRateByTheCode) {
  EXPECT_DOUBLE_EQ(FrameSource(0, 1).secondsPerPicture(), 1.0 / 15);
  EXPECT_DOUBLE_EQ(FrameSource(5, 1).secondsPerPicture(), 1.0 / 20);
  EXPECT_DOUBLE_EQ(FrameSource(10, 1).secondsPerPicture(), 1.0 / 25);
  EXPECT_DOUBLE_EQ(FrameSource(15, 1).secondsPerPicture(), 1.0 / 30);
}

TEST(FrameSourceTest, TakesAnotherCode) {
  FrameSource source(0, 1);
  source.setCode(3);
  EXPECT_DOUBLE_EQ(source.secondsPerPicture(), 1.0 / 30);
}

TEST(FrameSourceTest, PutsATimeStampBeforePictureAndSound) {
  const Bytes picture = FrameSource(3, 1).nextPicture(0x0102030405, true);
  ASSERT_THAT(typesIn(picture), ElementsAre(8, 1, 8, 2));
  EXPECT_EQ(framesIn(picture)[0].payload, (Bytes{0, 5, 4, 3, 2, 1, 0, 0, 0}));
  EXPECT_EQ(framesIn(picture)[2].payload, (Bytes{1, 5, 4, 3, 2, 1, 0, 0, 0}));
}

TEST(FrameSourceTest, SendsNoTimeStampsForOldFirmware) {
  EXPECT_THAT(typesIn(FrameSource(3, 1).nextPicture(7, false)), ElementsAre(1, 2));
}

TEST(FrameSourceTest, RepeatsItselfForTheSameSeedOnly) {
  EXPECT_EQ(FrameSource(3, 1).nextPicture(7, true), FrameSource(3, 1).nextPicture(7, true));
  EXPECT_NE(FrameSource(3, 1).nextPicture(7, true), FrameSource(3, 2).nextPicture(7, true));
}

TEST(FrameSourceTest, BeatsWithATimeStamp) {
  EXPECT_EQ(FrameSource(3, 1).heartbeat(2), (Bytes{15, 0, 0, 0, 8, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(FrameSourceTest, KnowsFramesThatNobodyKnows) {
  FrameSource source(3, 1);
  for (int i = 0; i < 50; ++i) {
    const auto types = typesIn(source.unknownFrame());
    ASSERT_EQ(types.size(), 1u);
    EXPECT_THAT(types[0], testing::AnyOf(0, 5, 6, 10, 99, 0xFFFF));
  }
}

}  // namespace
}  // namespace zel::simulator
