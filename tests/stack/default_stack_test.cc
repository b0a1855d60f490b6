#include <gtest/gtest.h>

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include "platform/simulated/simulated_platform.h"
#include "transport/camera_data_parser.h"

namespace zel::test {
namespace {

// The process-wide stack lives as long as the process, and so each of these runs in a process of its own.
void exitWith(bool success) { std::_Exit(success ? 0 : 1); }

TEST(DefaultStackDeathTest, GivesTheSameObjectsToEveryCaller) {
  EXPECT_EXIT(
      {
        auto* host = new platform::SimulatedPlatform();
        setDefaultPorts(host->ports());
        exitWith(&ZELCameraAccessory::defaultCamera() == &ZELCameraAccessory::defaultCamera() &&
                 &ZELCameraAccessory::defaultCamera() == &processStack().accessory() &&
                 &CameraDataParser::shareCameraDataParser() == &processStack().parser());
      },
      testing::ExitedWithCode(0), "");
}

TEST(DefaultStackDeathTest, GivesTheProcessesPreviewToTheSuitablePlayer) {
  EXPECT_EXIT(
      {
        auto* host = new platform::SimulatedPlatform();
        setDefaultPorts(host->ports());
        const auto player = ZELPreviewPlayer::suitablePreviewPlayer();
        exitWith(CameraDataParser::shareCameraDataParser().previewPlayer() == player && player->imageWidth() == 1440);
      },
      testing::ExitedWithCode(0), "");
}

TEST(DefaultStackDeathTest, MakesALiveDataSourceOfTheProcess) {
  EXPECT_EXIT(
      {
        auto* host = new platform::SimulatedPlatform();
        setDefaultPorts(host->ports());
        const auto source = ZELLiveDataSource::initWitCameraResolution(6, 1920, 960, 8'000'000);
        source->startLiveData();
        exitWith(source->fps() == 25 && source->player() != nullptr &&
                 source->player() == CameraDataParser::shareCameraDataParser().previewPlayer());
      },
      testing::ExitedWithCode(0), "");
}

TEST(DefaultStackDeathTest, SaysWhatIsMissingWithoutPorts) {
  EXPECT_DEATH(ZELCameraAccessory::defaultCamera(), "call setDefaultPorts\\(\\) before the first class operation");
}

TEST(DefaultStackDeathTest, RefusesPortsThatComeTooLate) {
  EXPECT_DEATH(
      {
        auto* host = new platform::SimulatedPlatform();
        setDefaultPorts(host->ports());
        ZELCameraAccessory::defaultCamera();
        setDefaultPorts(host->ports());
      },
      "comes too late");
}

TEST(DefaultStackDeathTest, HasNothingToSimulateAConnectionWith) {
  ZELCameraAccessory::simulatorConnectToHost("localhost", 1);
}

}  // namespace
}  // namespace zel::test
