// Statistics as a subscription.

#include <ZELTarkaSDK/Camera.h>
#include <gmock/gmock.h>

#include <optional>
#include <vector>

#include "platform/simulated/simulated_platform.h"
#include "tests/facade/bus_camera.h"
#include "tests/link/bytes.h"
#include "tests/link/simulated_camera.h"

namespace zel::test {
namespace {

using Reason = CameraError::Reason;
using std::chrono::milliseconds;

// In virtual time.
class StatisticsTickerTest : public testing::Test {
 protected:
  StatisticsTickerTest() { camera.emplace(*Camera::create({.ports = &host.ports()})); }

  void keep(milliseconds interval) {
    subscription.emplace(camera->statisticsEvery(interval, {.capacity = 100}));
    subscription->each([this](const CameraStatistics& now) { told.push_back(now); });
  }
  std::optional<Reason> end(Subscription<CameraStatistics>& of) {
    std::optional<Reason> why;
    of.next().then([&](const Result<CameraStatistics>& next) {
      if (!next) why = next.error().reason;
    });
    host.runUntilIdle();
    return why;
  }

  platform::SimulatedPlatform host;
  std::optional<Camera> camera;
  std::optional<Subscription<CameraStatistics>> subscription;
  std::vector<CameraStatistics> told;
};

TEST_F(StatisticsTickerTest, ComeOnceEveryIntervalAlsoWithoutALink) {
  keep(milliseconds(500));
  host.advance(0.4);
  EXPECT_TRUE(told.empty());
  for (int tenth = 0; tenth < 20; ++tenth) host.advance(0.1);
  ASSERT_EQ(told.size(), 4u);  // after 0.5, 1, 1.5 and 2 s of 2.4
  EXPECT_EQ(told[3].time - told[0].time, 1500);
  EXPECT_EQ(told[0].status, LinkStatus::closed);
}

TEST_F(StatisticsTickerTest, CountWhatTheCameraHasSent) {
  const auto accessory = host.plug(cameraDescription());
  auto connecting = camera->connect();
  host.runUntilIdle();
  accessory->current()->send(join(kMarker, bytes({7, 0, 0, 0, 2, 0, 5})));
  host.runUntilIdle();
  accessory->current()->send(bytes({7, 0, 0, 0, 2, 0, 5}));
  host.runUntilIdle();
  keep(milliseconds(100));
  host.advance(0.1);
  ASSERT_EQ(told.size(), 1u);
  EXPECT_EQ(told[0].status, LinkStatus::flowing);
  EXPECT_EQ(told[0].link.frames[static_cast<std::size_t>(FrameType::previewAudio)], 2u);
  EXPECT_FALSE(told[0].stream);
}

TEST_F(StatisticsTickerTest, EndWithTheirSubscription) {
  keep(milliseconds(100));
  host.advance(0.1);
  subscription.reset();
  host.advance(10);
  EXPECT_EQ(told.size(), 1u);
}

TEST_F(StatisticsTickerTest, EndWithTheCameraObject) {
  auto statistics = camera->statisticsEvery(milliseconds(100));
  camera.reset();
  EXPECT_EQ(end(statistics), Reason::closed);
}

TEST_F(StatisticsTickerTest, HaveAnIntervalOfTenMillisecondsAtLeast) {
  auto fastest = camera->statisticsEvery(milliseconds(10));
  EXPECT_EQ(end(fastest), std::nullopt);
  auto tooFast = camera->statisticsEvery(milliseconds(9));
  EXPECT_EQ(end(tooFast), Reason::invalid);
}

// On real threads.
class StatisticsOfMediaTest : public BusCamera {};

TEST_F(StatisticsOfMediaTest, CountThePreviewsAndTheStream) {
  attach();
  Camera camera = opened();
  EXPECT_EQ(camera.allStatistics().preview.units, 0u);
  {
    auto pictures = camera.pictures();
    ASSERT_TRUE(pictures.next().get());
  }
  const std::uint64_t before = camera.allStatistics().preview.units;
  EXPECT_GT(before, 0u) << "those of a preview that has ended count too";
  auto stream = camera.stream().get();
  ASSERT_TRUE(stream) << stream.error().message;
  const CameraStatistics now = camera.allStatistics();
  ASSERT_TRUE(now.stream);
  EXPECT_GT(now.stream->pictures, 0u);
  EXPECT_GT(now.preview.units, before);
  stream->stop();
  EXPECT_FALSE(camera.allStatistics().stream);
  EXPECT_GE(camera.allStatistics().preview.units, now.preview.units);
}

}  // namespace
}  // namespace zel::test
