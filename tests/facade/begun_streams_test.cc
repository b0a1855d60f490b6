// Streams that are there before their first picture, and cameras that come back.

#include <ZELTarkaSDK/Camera.h>
#include <gmock/gmock.h>

#include "tests/facade/bus_camera.h"

namespace zel::test {
namespace {

using Reason = CameraError::Reason;
using std::chrono::milliseconds;

class BegunStreamsTest : public BusCamera {
 protected:
  static bool completes(const CameraStream& stream) {
    return eventually([&] { return stream.statistics().complete; });
  }
  static bool fails(const CameraStream& stream) {
    return eventually([&] { return stream.failure().has_value(); });
  }
};

TEST_F(BegunStreamsTest, BeginsWithTheCameraThatComesLater) {
  Camera camera = *Camera::create(options());
  auto stream = camera.beginStream();
  ASSERT_TRUE(stream) << stream.error().message;
  auto packets = stream->packets();
  auto problems = stream->problems();
  attach();
  ASSERT_TRUE(camera.connect().get());
  EXPECT_TRUE(packets.next().get());
  EXPECT_EQ(stream->failure(), std::nullopt);
  auto problem = problems.next();
  problem.cancel();
  EXPECT_EQ(problem.get().error().reason, Reason::cancelled) << "nothing was lost, and nothing was refused";
}

TEST_F(BegunStreamsTest, IsCompleteWhenItIsAsLongAsWasAskedFor) {
  attach();
  Camera camera = opened();
  StreamOptions options;
  options.length = milliseconds(300);
  auto stream = camera.beginStream(options);
  ASSERT_TRUE(stream);
  EXPECT_TRUE(completes(*stream));
  EXPECT_LE(stream->statistics().newestVideo, 300'000);
}

TEST_F(BegunStreamsTest, TellsWhyItCannotGoOn) {
  simulator::Faults faults;
  faults.refuse = {0x0004};  // the preview
  attach(faults);
  Camera camera = opened();
  auto stream = camera.beginStream();
  ASSERT_TRUE(stream);
  EXPECT_TRUE(fails(*stream));
  EXPECT_THAT(*stream->failure(), testing::HasSubstr("failed to open camera video stream"));
}

TEST_F(BegunStreamsTest, ThereIsOneAtATime) {
  attach();
  Camera camera = opened();
  const auto first = camera.beginStream();
  ASSERT_TRUE(first);
  EXPECT_EQ(camera.beginStream().error().reason, Reason::invalid);
}

TEST_F(BegunStreamsTest, GoOnWithTheFirstCameraAlone) {
  attach({}, "E1A0001");
  attach({}, "E1A0002");
  CameraOptions with = options();
  with.staysWithCamera = true;
  Camera camera = *Camera::create(with);
  ASSERT_TRUE(camera.connect().get());
  const std::string first = camera.info()->serialNumber();
  simulators_[first == "E1A0001" ? 0 : 1]->unplug();
  EXPECT_TRUE(eventually([&] { return camera.linkStatus() == LinkStatus::closed; }));
  EXPECT_FALSE(camera.connect({.timeLimit = milliseconds(300)}).get());
  simulators_[first == "E1A0001" ? 0 : 1]->plug();
  ASSERT_TRUE(camera.connect().get());
  EXPECT_EQ(camera.info()->serialNumber(), first);
}

TEST_F(BegunStreamsTest, AnotherCameraIsTakenWhereTheHostDoesNotMind) {
  attach({}, "E1A0001");
  attach({}, "E1A0002");
  Camera camera = opened();
  const std::string first = camera.info()->serialNumber();
  simulators_[first == "E1A0001" ? 0 : 1]->unplug();
  EXPECT_TRUE(
      eventually([&] { return camera.linkStatus() == LinkStatus::flowing && camera.info()->serialNumber() != first; }));
}

}  // namespace
}  // namespace zel::test
