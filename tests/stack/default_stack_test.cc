#include <gtest/gtest.h>

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELDateFormatter.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "link/camera_data_parser.h"
#include "link/zel_camera_data_writer.h"
#include "platform/simulated/simulated_platform.h"

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

class Folder final : public platform::Documents {
 public:
  Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zel-documents-XXXXXX").string();
    path = ::mkdtemp(pattern.data());
  }
  ~Folder() override { std::filesystem::remove_all(path); }
  std::string folder() override { return path; }
  std::string path;
};

// Whether a formatter that is used before the host has ports neither ends the process nor keeps the host from naming
// them, and logs with them afterwards.
bool logsBeforeAndAfterPorts() {
  ZELDateFormatter& formatter = ZELDateFormatter::defaultFormatter();
  formatter.writeLogToFile("lost", 4);
  const std::string early = formatter.getCurrentTime();  // of a system whose clock was set
  auto* host = new platform::SimulatedPlatform();
  Folder documents;
  host->setNow(731'063'103.007);
  platform::Ports ports = host->ports();
  ports.documents = &documents;
  setDefaultPorts(ports);
  formatter.writeLogToFile("kept", 4);
  std::ifstream log(documents.path + "/log.txt", std::ios::binary);
  const std::string kept{std::istreambuf_iterator<char>(log), {}};
  return early > "2020" && formatter.getCurrentTime() == "2024-03-02 09:05:03:007" && kept == "kept";
}

TEST(DefaultStackDeathTest, LogsBeforePortsAreNamedAndWithThemAfterwards) {
  EXPECT_EXIT(exitWith(logsBeforeAndAfterPorts()), testing::ExitedWithCode(0), "");
}

// The system's time in UTC, to the second.
std::string systemTime() {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm fields{};
  std::array<char, 32> text{};
  ::gmtime_r(&now, &fields);
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &fields)};
}

bool tellsTheSystemsTimeWithoutPorts() {
  const std::string before = systemTime();
  const std::string told = ZELDateFormatter::defaultFormatter().getCurrentTime().substr(0, before.size());
  return before <= told && told <= systemTime();
}

TEST(DefaultStackDeathTest, TellsTheSystemsTimeInUtcBeforePortsAreNamed) {
  EXPECT_EXIT(exitWith(tellsTheSystemsTimeWithoutPorts()), testing::ExitedWithCode(0), "");
}

TEST(DefaultStackDeathTest, HasOneDataWriter) {
  EXPECT_EQ(&ZELCameraDataWriter::defaultWriter(), &ZELCameraDataWriter::defaultWriter());
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
