#include <gmock/gmock.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include <ZELTarkaSDK/Version.h>

#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

using testing::HasSubstr;

class DevicesTest : public ZelcamTest {};

TEST_F(DevicesTest, ListsNothingOnAnEmptyBus) {
  const auto host = zelcam({"--json", "devices"});
  EXPECT_EQ(host->wait(), 0);
  EXPECT_EQ(host->output(), "");
}

TEST_F(DevicesTest, ListsEveryFieldOfACamera) {
  const auto camera = simulator({"--serial", "E1A0042", "--name", "My camera", "--firmware", "189"});
  const auto host = zelcam({"--json", "devices"});
  EXPECT_EQ(host->wait(), 0);
  const Json device = lines(*host).at(0);
  EXPECT_EQ(device["serialNumber"], "E1A0042");
  EXPECT_EQ(device["name"], "My camera");
  EXPECT_EQ(device["firmwareRevision"], "E1_2.0.1_189");
  EXPECT_EQ(device["protocolStrings"], Json({"com.zelcam.ucd"}));
  EXPECT_EQ(device["manufacturer"], "Example");
  EXPECT_EQ(device["modelNumber"], "E1");
  EXPECT_EQ(device["hardwareRevision"], "1.0");
  EXPECT_EQ(device["dockType"], "usb");
  EXPECT_TRUE(device["connectionID"].is_number_unsigned());
}

TEST_F(DevicesTest, ListsTheOneThatWasAskedFor) {
  const auto one = simulator({"--serial", "ONE"});
  const auto two = simulator({"--serial", "TWO"});
  const auto host = zelcam({"--json", "--camera", "TWO", "devices"});
  EXPECT_EQ(host->wait(), 0);
  ASSERT_EQ(lines(*host).size(), 1u);
  EXPECT_EQ(lines(*host)[0]["serialNumber"], "TWO");
}

TEST_F(DevicesTest, NamesThoseThatAreThereForAnUnknownCamera) {
  const auto one = simulator({"--serial", "ONE"});
  const auto host = zelcam({"--camera", "THREE", "devices"});
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr("THREE"));
  EXPECT_THAT(host->errors(), HasSubstr("ONE"));
}

TEST_F(DevicesTest, SkipsAMalformedFileWithAWarningThatNamesIt) {
  const auto one = simulator();
  std::ofstream(bus() + "/broken.json") << "{ \"connectionID\": ";
  const auto host = zelcam({"--json", "devices"});
  EXPECT_EQ(host->wait(), 0);
  EXPECT_EQ(lines(*host).size(), 1u);
  EXPECT_THAT(host->errors(), HasSubstr("broken.json"));
}

TEST_F(DevicesTest, WatchesComingAndGoing) {
  const auto there = simulator({"--serial", "THERE"});
  const auto host = zelcam({"devices", "--watch"});
  EXPECT_TRUE(host->waitForOutput("THERE"));  // listed once the watch has begun
  {
    const auto one = simulator({"--serial", "ONE"});
    EXPECT_TRUE(host->waitForOutput("connected ONE"));
    one->signal(SIGTERM);
    EXPECT_EQ(one->wait(), 0);
  }
  EXPECT_TRUE(host->waitForOutput("disconnected ONE"));
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0);
}

TEST_F(DevicesTest, RefusesAFolderThatOthersCanWrite) {
  std::filesystem::create_directory(bus());
  ::chmod(bus().c_str(), 0777);
  const auto host = zelcam({"devices"});
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr(bus()));
}

TEST_F(DevicesTest, EndsWrongUsageWithTwo) {
  EXPECT_EQ(zelcam({})->wait(), 2);
  EXPECT_EQ(zelcam({"nonsense"})->wait(), 2);
  EXPECT_EQ(zelcam({"devices", "--nonsense"})->wait(), 2);
  EXPECT_EQ(zelcam({"--timeout", "soon", "devices"})->wait(), 2);
  EXPECT_EQ(zelcam({"--help"})->wait(), 0);
  EXPECT_EQ(zelcam({"devices", "--help"})->wait(), 0);
}

TEST_F(DevicesTest, ComesWithASimulatorOfItsOwnVersion) {
  const auto host = zelcam({"--version"});
  EXPECT_EQ(host->wait(), 0);
  EXPECT_EQ(host->output(), std::string("zelcam ") + ZELTarkaSDKVersionString + "\n");
  Process camera(simulatorProgram(), {"--version"}, folder.path());
  EXPECT_EQ(camera.wait(), 0);
  EXPECT_EQ(camera.output(), std::string("zelcam-sim ") + ZELTarkaSDKVersionString + "\n");
}

TEST_F(DevicesTest, LeavesNothingBehindWhenTheSimulatorEnds) {
  const auto one = simulator({"--serial", "ONE"});
  EXPECT_TRUE(std::filesystem::exists(bus() + "/ONE.json"));
  one->signal(SIGINT);
  EXPECT_EQ(one->wait(), 0);
  EXPECT_TRUE(std::filesystem::is_empty(bus()));
}

TEST_F(DevicesTest, TellsTheSimulatorsFaultsForAWrongOne) {
  Process camera(simulatorProgram(), {"--accessories", bus(), "--fault", "nonsense"}, folder.path());
  EXPECT_EQ(camera.wait(), 2);
  EXPECT_THAT(camera.errors(), HasSubstr("unknown fault \"nonsense\""));
  EXPECT_THAT(camera.errors(), HasSubstr("one-byte-writes"));
}

}  // namespace
}  // namespace zel::test
