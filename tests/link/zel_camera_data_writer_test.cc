#include "link/zel_camera_data_writer.h"

#include "link/camera_session.h"
#include "tests/link/simulated_camera.h"

namespace zel::test {
namespace {

TEST(ZELCameraDataWriterTest, HoldsItsSessionWeakly) {
  platform::SimulatedPlatform host;
  CameraStack stack(host.ports());
  ZELCameraDataWriter writer;
  EXPECT_EQ(writer.cameraSession(), nullptr);
  const auto owner = std::make_shared<int>();
  std::shared_ptr<CameraSession> session(owner, &stack.accessory().cameraSession());
  writer.setCameraSession(session);
  EXPECT_EQ(writer.cameraSession(), session);
  EXPECT_EQ(owner.use_count(), 2);
}

using ZELCameraDataWriterLinkTest = SimulatedCameraTest;

TEST_F(ZELCameraDataWriterLinkTest, WritesNothing) {
  openAndSynchronise();
  const auto owner = std::make_shared<int>();
  ZELCameraDataWriter writer;
  writer.setCameraSession(std::shared_ptr<CameraSession>(owner, &accessory().cameraSession()));
  link().takeWritten();
  const Bytes frame = bytes({6, 0, 0, 0, 4, 0});
  writer.writeData(frame.data(), 6);
  host.runUntilIdle();
  EXPECT_EQ(link().takeWritten(), Bytes());
}

}  // namespace
}  // namespace zel::test
