#include "gateway/cameras/live_stream.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/facade/bus_camera.h"

namespace zel::gateway {
namespace {

using std::chrono::milliseconds, std::chrono::seconds;

class LiveStreamTest : public test::BusCamera {
 protected:
  // Waits until the viewer is given something.
  static bool gets(Viewer& viewer) {
    return test::eventually([&] {
      std::array<std::uint8_t, 64> bytes{};
      return viewer.read(bytes) > 0;
    });
  }
  bool runs() {
    return live_->withStream([](CameraStream&) {});
  }
  void make() {
    attach();
    camera_.emplace(opened());
    live_.emplace(*camera_, kSmallestPreview);
  }

  const LiveStream::Clock::time_point start_ = LiveStream::Clock::now();
  std::optional<Camera> camera_;
  std::optional<LiveStream> live_;
};

TEST_F(LiveStreamTest, RunsWhileSomebodyHoldsIt) {
  make();
  EXPECT_FALSE(runs());
  live_->look(start_);
  EXPECT_FALSE(runs()) << "nobody has asked for it";
  const auto viewer = live_->feed().join(FeedForm::units, [] {});
  const auto token = live_->hold();
  EXPECT_TRUE(runs());
  EXPECT_TRUE(gets(*viewer));
  live_->look(start_ + seconds(3600));
  EXPECT_TRUE(runs());
}

TEST_F(LiveStreamTest, StaysOnForFiveSecondsAfterTheLastHasGone) {
  make();
  auto one = live_->hold(), other = live_->hold();
  one.reset();
  live_->look(start_ + seconds(100));
  EXPECT_TRUE(runs()) << "the other still holds it";
  other.reset();
  live_->look(start_ + milliseconds(104'999));
  EXPECT_TRUE(runs());
  live_->look(start_ + seconds(105));
  EXPECT_FALSE(runs());
  const auto again = live_->hold();
  EXPECT_TRUE(runs());
}

TEST_F(LiveStreamTest, GoesOnWhenTheCameraComesBack) {
  make();
  const auto token = live_->hold();
  const auto viewer = live_->feed().join(FeedForm::mp4, [] {});
  EXPECT_TRUE(gets(*viewer));
  simulated().unplug();
  EXPECT_TRUE(test::eventually([&] { return camera_->linkStatus() == LinkStatus::closed; }));
  simulated().plug();
  ASSERT_TRUE(camera_->connect().get());
  const auto before = live_->feed().statistics().pictures;
  auto now = start_;
  EXPECT_TRUE(test::eventually([&] {
    live_->look(now += seconds(1));
    return live_->feed().statistics().pictures > before + 10;
  }));
  EXPECT_FALSE(viewer->isEnded());
}

TEST_F(LiveStreamTest, BeginsNoMoreAfterItsEnd) {
  make();
  const auto token = live_->hold();
  const auto viewer = live_->feed().join(FeedForm::units, [] {});
  live_->end();
  EXPECT_FALSE(runs());
  const auto other = live_->hold();
  live_->look(start_);
  EXPECT_FALSE(runs());
  EXPECT_TRUE(viewer->isEnded());
}

}  // namespace
}  // namespace zel::gateway
