#include <gtest/gtest.h>

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELDateFormatter.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <algorithm>
#include <array>
#include <thread>
#include <vector>

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

// Four threads ask for it at once.
bool allSeeOneFormatter() {
  std::array<const ZELDateFormatter*, 4> seen{};
  {
    std::vector<std::jthread> threads;
    for (auto& formatter : seen) {
      threads.emplace_back([&formatter] { formatter = &ZELDateFormatter::defaultFormatter(); });
    }
  }
  return std::ranges::count(seen, &ZELDateFormatter::defaultFormatter()) == 4;
}

TEST(DefaultStackDeathTest, MakesOneDateFormatterHoweverManyAskForItAtOnce) {
  EXPECT_EXIT(
      {
        auto* host = new platform::SimulatedPlatform();
        setDefaultPorts(host->ports());
        exitWith(allSeeOneFormatter());
      },
      testing::ExitedWithCode(0), "");
}

TEST(DefaultStackDeathTest, GivesTheDateFormatterTheClockOfTheProcess) {
  EXPECT_EXIT(
      {
        auto* host = new platform::SimulatedPlatform();
        host->setNow(731'063'103.007);
        setDefaultPorts(host->ports());
        exitWith(ZELDateFormatter::defaultFormatter().getCurrentTime() == "2024-03-02 09:05:03:007");
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
