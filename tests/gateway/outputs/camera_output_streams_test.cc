#include "gateway/outputs/camera_output_streams.h"

#include <gmock/gmock.h>

#include "gateway/outputs/camera_outputs.h"
#include "tests/facade/bus_camera.h"
#include "tests/outputs/read_back.h"

namespace zel::gateway {
namespace {

using zel::test::eventually;

class CameraOutputStreamsTest : public zel::test::BusCamera {
 protected:
  CameraOutputs outputs() {
    CameraOptions camera = options();
    camera.serialNumber = "E1A0001";
    return CameraOutputs({.folder = media_.path()},
                         std::make_shared<CameraOutputStreams>(camera, previewCode({1440, 720, 15})));
  }
  static bool haveWritten(const CameraOutputs& outputs, std::uint64_t pictures) {
    return eventually([&] {
      return std::ranges::all_of(outputs.list(), [&](const auto& one) { return one.report.pictures >= pictures; });
    });
  }

  zel::test::TemporaryFolder media_;
};

TEST_F(CameraOutputStreamsTest, OutputsOfTheCamerasOwnPicturesComeAndGo) {
  attach();
  CameraOutputs outputs = this->outputs();
  const auto film = outputs.begin({"film.mp4", std::nullopt});
  ASSERT_TRUE(film) << film.error().message;
  ASSERT_TRUE(haveWritten(outputs, 1));
  const auto second = outputs.begin({"second.ts", std::nullopt});
  ASSERT_TRUE(haveWritten(outputs, 20));
  const auto ended = outputs.end(second->id);
  EXPECT_EQ(ended->report.state, OutputState::finished);
  ASSERT_TRUE(outputs.end(film->id));
  EXPECT_EQ(readBack(media_.file("film.mp4")).width, 1440);
  EXPECT_GE(readBack(media_.file("second.ts")).pictures, 20);
}

TEST_F(CameraOutputStreamsTest, AStitchedOutputBeginsBeforeTheCameraIsThereAndGoesOnAfterALoss) {
  CameraOutputs outputs = this->outputs();
  const auto film = outputs.begin({"film.mp4", StitchedSize{320, 160, 400'000}});
  ASSERT_TRUE(film) << film.error().message;
  EXPECT_EQ(outputs.list().at(0).report.state, OutputState::waiting);
  attach();
  ASSERT_TRUE(haveWritten(outputs, 3));
  const std::uint64_t before = outputs.list().at(0).report.pictures;
  simulated().unplug();
  simulated().plug();
  ASSERT_TRUE(haveWritten(outputs, before + 30));
  ASSERT_TRUE(outputs.end(film->id));
  const auto read = zel::readBack(media_.file("film.mp4"));
  EXPECT_EQ(std::pair(read.width, read.height), std::pair(320, 160));
  EXPECT_TRUE(read.spherical);
  EXPECT_TRUE(read.ordered);
}

}  // namespace
}  // namespace zel::gateway
