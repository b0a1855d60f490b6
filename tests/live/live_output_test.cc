#include "live/live_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "tests/live/live_test.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

class LiveOutputTest : public testing::Test {
 protected:
  LiveOutputTest() { output.setDelegate(log); }
  void unit(std::int64_t timestamp) {
    Bytes bytes = hex("0000000141");
    output.addH264Nalu(bytes, false, timestamp);
  }

  LiveSettings settings{3, 8, 4, 1};
  LiveOutput output{settings};
  std::shared_ptr<LiveLog> log = std::make_shared<LiveLog>();
};

TEST_F(LiveOutputTest, CountsTimeFromTheFirstSound) {
  output.onAACAdts(hex("AA"), 1000);
  output.onAACAdts(hex("AA"), 2000);
  EXPECT_EQ(output.firstTimestamp(), 1000);
  EXPECT_EQ(output.takePicture(1000, false), 0);
  EXPECT_EQ(output.takePicture(1033, false), 33);
  EXPECT_EQ(output.takePicture(999, false), std::nullopt);
  EXPECT_EQ(output.bufferTimestamp(), 1033);
}

TEST_F(LiveOutputTest, WantsNoPictureWhileCancelled) {
  output.onAACAdts(hex("AA"), 1);
  EXPECT_EQ(output.takePicture(2, true), std::nullopt);
  EXPECT_EQ(output.bufferTimestamp(), 0);
  EXPECT_EQ(output.takePicture(2, false), 1);
}

TEST_F(LiveOutputTest, HoldsAUnitBackUntilBothHeadersAreThere) {
  output.onAACAdts(hex("AA"), 1000);
  output.takePicture(1000, false);
  unit(0);
  output.onAACHeader(hex("1190"));
  unit(0);
  output.addVideoStream(hex("67"), hex("68"));
  unit(0);
  EXPECT_THAT(log->take(), ElementsAre("sound header 1190", "video header 67 68", "unit 0 0000000141"));
}

TEST_F(LiveOutputTest, HoldsAUnitBackThatIsLaterThanTheNewestPicturesOwnTime) {
  output.onAACHeader(hex("1190"));
  output.addVideoStream(hex("67"), hex("68"));
  output.onAACAdts(hex("AA"), 10);
  output.takePicture(30, false);
  log->take();
  unit(31);
  EXPECT_THAT(log->take(), IsEmpty());
  unit(30);
  EXPECT_THAT(log->take(), ElementsAre("unit 30 0000000141"));
}

TEST_F(LiveOutputTest, HoldsSoundBackUntilTheVideoHeaderIsThere) {
  output.onAACAdts(hex("A0"), 5);  // no header either
  output.onAACHeader(hex("1190"));
  output.onAACAdts(hex("A1"), 5);
  output.addVideoStream(hex("67"), hex("68"));
  output.onAACAdts(hex("A2"), 6);
  EXPECT_THAT(log->take(), ElementsAre("sound header 1190", "video header 67 68", "sound 1 a2"));
  LiveStatistics statistics;
  output.copyStatistics(statistics);
  EXPECT_EQ(statistics.droppedAudio, 2u);
  EXPECT_EQ(statistics.audioFrames, 1u);
}

// What the output says of itself while it delivers its headers.
class HeaderWatch final : public ZELLiveDataSourceProtocol {
 public:
  explicit HeaderWatch(const LiveOutput& watched) : output(watched) {}
  void sourceOnError(const ZELError&) override {}
  void sourceOnH264Header(Bytes, Bytes) override { said.emplace_back(output.hasVideo()); }
  void sourceOnH264Nalu(Bytes, bool, std::int64_t) override {}
  void sourceOnAACHeader(Bytes) override { said.emplace_back(output.hasAudio()); }
  void sourceOnAACData(Bytes, std::int64_t) override {}
  const LiveOutput& output;
  std::vector<bool> said;
};

TEST_F(LiveOutputTest, HasAHeaderOnlyWhenItIsDelivered) {
  const auto watch = std::make_shared<HeaderWatch>(output);
  output.setDelegate(watch);
  output.onAACHeader(hex("1190"));
  output.addVideoStream(hex("67"), hex("68"));
  EXPECT_THAT(watch->said, ElementsAre(false, false));
  EXPECT_TRUE(output.hasAudio() && output.hasVideo());
}

TEST_F(LiveOutputTest, LetsSoundPassWhereNoVideoWillCome) {
  settings.isStitch.set(false);
  output.onAACHeader(hex("1190"));
  output.onAACAdts(hex("A1"), 5);
  EXPECT_THAT(log->take(), ElementsAre("sound header 1190", "sound 0 a1"));
}

TEST_F(LiveOutputTest, TakesAnyTimeOfTheCamera) {
  output.onAACHeader(hex("1190"));
  output.addVideoStream(hex("67"), hex("68"));
  output.onAACAdts(hex("A1"), kLeast);
  EXPECT_EQ(output.takePicture(kMost, false), std::nullopt);  // an origin below 1 is none
  output.onAACAdts(hex("A2"), kMost);
  EXPECT_EQ(log->count("sound -1 a2"), 1u);
  output.restart();
  output.onAACAdts(hex("A3"), 1);
  EXPECT_EQ(output.takePicture(kLeast, false), std::nullopt);
  EXPECT_EQ(output.takePicture(kMost, false), kMost - 1);
}

TEST_F(LiveOutputTest, GoesOnWithoutADelegate) {
  log.reset();
  output.onAACHeader(hex("1190"));
  output.addVideoStream(hex("67"), hex("68"));
  output.onAACAdts(hex("A1"), 5);
  unit(0);
  EXPECT_TRUE(output.hasAudio() && output.hasVideo());
}

}  // namespace
}  // namespace zel::test
