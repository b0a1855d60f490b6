#include "simulator/frame_source.h"

#include <gmock/gmock.h>

namespace zel::simulator {
namespace {

using testing::ElementsAre;

struct Cut {
  std::uint16_t type;
  Bytes payload;
};

std::vector<Cut> cutsIn(const Bytes& bytes) {
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
  for (const Cut& cut : cutsIn(bytes)) types.push_back(cut.type);
  return types;
}

TEST(FrameSourceTest, RepeatsItselfForTheSameSeedOnly) {
  EXPECT_EQ(FrameSource(1).tornFrame(), FrameSource(1).tornFrame());
  EXPECT_NE(FrameSource(1).tornFrame(), FrameSource(2).tornFrame());
}

TEST(FrameSourceTest, BeatsWithATimeStamp) {
  EXPECT_EQ(FrameSource(1).heartbeat(2), (Bytes{15, 0, 0, 0, 8, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(FrameSourceTest, KnowsFramesThatNobodyKnows) {
  FrameSource source(1);
  for (int i = 0; i < 50; ++i) {
    const auto types = typesIn(source.unknownFrame());
    ASSERT_EQ(types.size(), 1u);
    EXPECT_THAT(types[0], testing::AnyOf(0, 5, 6, 10, 99, 0xFFFF));
  }
}

}  // namespace
}  // namespace zel::simulator
