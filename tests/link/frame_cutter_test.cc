#include "link/frame_cutter.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/link/bytes.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Keeps what the cutter says, in its order.
class RecordingSink final : public FrameSink {
 public:
  void takeFrame(std::uint16_t type, ByteView payload) override {
    said.push_back("frame " + std::to_string(type) + " of " + std::to_string(payload.size()));
    if (onFrame) onFrame();
  }
  void streamBegins() override { said.emplace_back("begins"); }
  bool awaitsPhoto() override { return awaitsAPhoto; }
  void positionLost() override { said.emplace_back("lost"); }

  std::vector<std::string> said;
  bool awaitsAPhoto = false;
  std::function<void()> onFrame;
};

class FrameCutterTest : public testing::Test {
 protected:
  void receive(const Bytes& data) {
    cutter.append(data);
    cutter.cut();
  }

  RecordingSink sink;
  FrameStatistics statistics;
  FrameCutter cutter{sink, statistics};
};

const Bytes kTwoOfVideo = bytes({8, 0, 0, 0, 1, 0, 7, 9});  // length 8, type 1, payload 7 9
const Bytes kOneOfAudio = bytes({7, 0, 0, 0, 2, 0, 5});     // length 7, type 2, payload 5

// A frame of that type and length, with a payload of zeros.
Bytes frameOf(std::uint8_t type, std::uint32_t length) {
  Bytes frame = {static_cast<std::uint8_t>(length),
                 static_cast<std::uint8_t>(length >> 8),
                 static_cast<std::uint8_t>(length >> 16),
                 static_cast<std::uint8_t>(length >> 24),
                 type,
                 0};
  frame.resize(length);
  return frame;
}

TEST_F(FrameCutterTest, HandsOnFramesInTheirOrderByAnyRoad) {
  const Bytes both = join(kTwoOfVideo, kOneOfAudio);
  receive(both);
  cutter.cut(both);
  EXPECT_THAT(sink.said, ElementsAre("frame 1 of 2", "frame 2 of 1", "frame 1 of 2", "frame 2 of 1"));
}

TEST_F(FrameCutterTest, CutsALongReadInPlaceAndAShortOneFromItsBuffer) {
  for (const std::uint32_t length : {4095u, 4096u, 4097u, 70'000u}) {
    sink.said.clear();
    const Bytes whole = join(frameOf(1, length), kOneOfAudio);
    const std::size_t half = whole.size() / 2;
    cutter.cut(ByteView(whole).first(half));
    cutter.cut(ByteView(whole).subspan(half));
    EXPECT_THAT(sink.said, ElementsAre("frame 1 of " + std::to_string(length - 6), "frame 2 of 1"));
    EXPECT_THAT(cutter.held(), IsEmpty());
  }
}

TEST_F(FrameCutterTest, SaysThatTheStreamBeginsOnceAByteFollowsTheMarker) {
  cutter.setNeedsMarker(true);
  receive(join(bytes({1, 2, 3}), kMarker));
  EXPECT_THAT(sink.said, IsEmpty());
  receive(kOneOfAudio);
  EXPECT_THAT(sink.said, ElementsAre("begins"));
  cutter.cut();
  EXPECT_THAT(sink.said, ElementsAre("begins", "frame 2 of 1"));
}

TEST_F(FrameCutterTest, SaysOnceThatThePositionIsLostAndHandsOnNothingBehindIt) {
  receive(join(bytes({5, 0, 0, 0, 1, 0}), kTwoOfVideo));
  EXPECT_THAT(sink.said, ElementsAre("lost"));
  EXPECT_TRUE(cutter.needsMarker());
  receive(kTwoOfVideo);
  EXPECT_THAT(sink.said, ElementsAre("lost"));
}

TEST_F(FrameCutterTest, LosesThePositionByALongerFrameThanItWasToldUnlessItIsAPhotoThatSomebodyAwaits) {
  cutter.setLongestFrame(8);
  sink.awaitsAPhoto = true;
  receive(frameOf(1, 8));
  receive(frameOf(3, 9));
  EXPECT_THAT(sink.said, ElementsAre("frame 1 of 2", "frame 3 of 3"));
  receive(frameOf(1, 9));
  EXPECT_THAT(sink.said, ElementsAre("frame 1 of 2", "frame 3 of 3", "lost"));
  cutter.setNeedsMarker(false);
  sink.awaitsAPhoto = false;
  receive(frameOf(3, 9));
  EXPECT_EQ(sink.said.size(), 4u);
  EXPECT_EQ(sink.said.back(), "lost");
}

TEST_F(FrameCutterTest, LetsAFrameInProgressFinishWhenItIsClearedAndDropsTheRest) {
  sink.onFrame = [this] { cutter.clear(); };
  receive(join(kTwoOfVideo, kOneOfAudio));
  EXPECT_THAT(sink.said, ElementsAre("frame 1 of 2"));
  EXPECT_TRUE(cutter.wasCleared());
  sink.onFrame = nullptr;
  receive(kOneOfAudio);
  EXPECT_THAT(sink.said, ElementsAre("frame 1 of 2", "frame 2 of 1"));
}

TEST(FindMarkerTest, FindsTheMarkerAtTheStart) { EXPECT_EQ(findMarker(kMarker), 0u); }

TEST(FindMarkerTest, FindsTheMarkerAtTheEnd) { EXPECT_EQ(findMarker(join(bytes({0xAF, 0xFA, 0}), kMarker)), 3u); }

TEST(FindMarkerTest, FindsTheMarkerBehindItsOwnOddHalf) { EXPECT_EQ(findMarker(join(bytes({0xAF}), kMarker)), 1u); }

TEST(FindMarkerTest, FindsNothingInAMarkerThatMissesItsLastByte) {
  EXPECT_EQ(findMarker(bytes({0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF})), std::nullopt);
}

TEST(FindMarkerTest, FindsNothingInNothing) { EXPECT_EQ(findMarker({}), std::nullopt); }

}  // namespace
}  // namespace zel::test
