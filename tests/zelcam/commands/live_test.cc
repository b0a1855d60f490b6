#include "tests/zelcam/live_test.h"

#include <gmock/gmock.h>
#include <png.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

#include "tests/zelcam/tick_and_beep.h"

namespace zel::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

// Pictures: the host sets its clock by the camera's again while that streams, and a second may then hold more or fewer.
constexpr int kClockSteps = 2;

// Pictures that were handed to the outputs or dropped. A machine that is too slow for all of them tells what it
// dropped.
int accountedPictures(const nlohmann::json& told) {
  int pictures = told["pictures"];
  for (const auto& [where, count] : told["dropped"].items())
    if (where != "audioFrames") pictures += count.get<int>();
  return pictures;
}

void writeRedPng(const std::string& file) {
  std::vector<std::uint8_t> rgb;
  for (int i = 0; i < 64 * 64; ++i) rgb.insert(rgb.end(), {255, 0, 0});
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = image.height = 64;
  image.format = PNG_FORMAT_RGB;
  ASSERT_NE(png_image_write_to_file(&image, file.c_str(), 0, rgb.data(), 0, nullptr), 0);
}

// -- what it writes

TEST_F(LiveTest, StreamsStitchedPicturesAndSoundToSeveralFilesAtOnce) {
  const auto camera = simulator();
  const auto host = live({"--json", "-o", path("a.mp4"), "-o", path("a.ts"), "-o", path("a.flv"), "-o", path("a.m3u8"),
                          "--size", "480x240", "--duration", "3"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  const Json told = lines(*host).at(0);
  EXPECT_GE(told["audioFrames"].get<int>() + told["dropped"]["audioFrames"].get<int>(), 100);
  for (const char* name : {"a.mp4", "a.ts", "a.flv", "a.m3u8"}) {
    const ReadBack read = readBack(path(name));
    EXPECT_EQ(read.pictures, told["pictures"]) << name;
    EXPECT_EQ(read.audioFrames, told["audioFrames"]) << name;
    EXPECT_GT(read.audioFrames, 0) << name;
    EXPECT_EQ(std::pair(read.width, read.height), std::pair(480, 240)) << name;
    EXPECT_TRUE(read.ordered) << name;
  }
  EXPECT_TRUE(readBack(path("a.mp4")).spherical);
}

TEST_F(LiveTest, TellsWhatBecameOfThePictures) {
  const auto camera = simulator();
  const auto host = live({"--json", "-o", path("a.mp4"), "--size", "480x240", "--duration", "3"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  const Json told = lines(*host).at(0);
  EXPECT_GE(told["received"], told["decoded"]);
  EXPECT_GE(told["decoded"], told["stitched"]);
  EXPECT_GE(told["stitched"], told["encoded"]);
  EXPECT_GT(told["encoded"], 0);
  EXPECT_GE(accountedPictures(told), 90 - kClockSteps);
  EXPECT_GT(told["latency"]["median"], 0);
  EXPECT_GE(told["latency"]["p99"], told["latency"]["median"]);
  EXPECT_GT(told["cpuSecondsPerPicture"], 0);
  EXPECT_GT(told["peakMemory"], 1'000'000);
  EXPECT_LT(std::abs(told["audioVideoDistance"].get<int>()), 1000);
  EXPECT_EQ(told["outputs"].at(0)["output"], path("a.mp4"));
  EXPECT_EQ(told["outputs"].at(0)["fault"], nullptr);
}

TEST_F(LiveTest, SeveralPicturesAreDecodedSideBySide) {
  const auto camera = simulator();
  const auto host =
      live({"--json", "-o", path("a.mp4"), "--size", "480x240", "--duration", "2", "--decoder-threads", "3"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  const Json told = lines(*host).at(0);
  EXPECT_GT(told["pictures"], 0);
  EXPECT_EQ(readBack(path("a.mp4")).pictures, told["pictures"]);
  EXPECT_GE(accountedPictures(told), 60 - kClockSteps);
  // Each picture waits for three more, and its way is counted from when it came itself.
  EXPECT_GE(told["latency"]["median"].get<double>(), 3 * 1000.0 / 30 - 10);
}

TEST_F(LiveTest, ALogoCoversTheNadir) {
  writeRedPng(path("logo.png"));
  const auto camera = simulator();
  for (const char* name : {"plain.mp4", "logo.mp4"}) {
    Arguments arguments = {"-o", path(name), "--size", "480x240", "--duration", "1", "--remove-purple"};
    if (name == std::string("logo.mp4")) arguments.insert(arguments.end(), {"--logo", path("logo.png")});
    const auto host = live(arguments);
    ASSERT_EQ(host->wait(), 0) << host->errors();
  }
  EXPECT_LT(ticksAndBeepsIn(path("plain.mp4")).nadirCr, 150);
  EXPECT_GT(ticksAndBeepsIn(path("logo.mp4")).nadirCr, 220);
}

TEST_F(LiveTest, WithoutStitchingTheCamerasOwnPicturesArePassedOn) {
  const auto camera = simulator();
  const auto host = live({"--json", "-o", path("a.mp4"), "--no-stitch", "--duration", "2"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_EQ(lines(*host).at(0)["decoded"], 0);
  const ReadBack read = readBack(path("a.mp4"));
  EXPECT_NEAR(read.pictures, 60, kClockSteps);
  EXPECT_EQ(std::pair(read.width, read.height), std::pair(1440, 720));
  EXPECT_FALSE(read.spherical);
}

TEST_F(LiveTest, StandardOutputCarriesTheStreamAlone) {
  const auto camera = simulator();
  const auto host = live({"--json", "-o", "-", "--no-stitch", "--duration", "1"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  const std::string stream = host->output();
  ASSERT_FALSE(stream.empty());
  EXPECT_EQ(stream.size() % 188, 0u);
  for (std::size_t at = 0; at < stream.size(); at += 188) ASSERT_EQ(stream[at], 0x47) << at;
  EXPECT_THAT(host->errors(), testing::ContainsRegex("\"pictures\":(28|29|30|31|32),"));
}

// -- how it ends

// The other file grows with every picture, and so tells moments apart; its first 400 kB are more than a second.
TEST_F(LiveTest, KilledAtAnyMomentItLeavesAFileThatPlays) {
  const auto camera = simulator();
  const unsigned seed = std::random_device{}();
  std::minstd_rand random(seed);
  std::uniform_int_distribution<std::uintmax_t> moment(400'000, 900'000);
  for (int i = 0; i < 10; ++i) {
    const std::string base = path("killed" + std::to_string(i));
    const auto host = live({"-o", base + ".mp4", "-o", base + ".ts", "--no-stitch"});
    ASSERT_TRUE(grows(base + ".ts", moment(random))) << host->errors();
    host->signal(SIGKILL);
    EXPECT_EQ(host->wait(), 128 + SIGKILL);
    const ReadBack read = readBack(base + ".mp4");
    EXPECT_GE(read.pictures, 30) << "round " << i << " with seed " << seed;
    EXPECT_TRUE(read.ordered) << "round " << i << " with seed " << seed;
  }
}

TEST_F(LiveTest, CtrlCEndsItWell) {
  const auto camera = simulator();
  const auto host = live({"-o", path("a.mp4"), "-o", path("a.ts"), "--no-stitch"});
  ASSERT_TRUE(grows(path("a.ts"), 100'000)) << host->errors();
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_EQ(readBack(path("a.mp4")).pictures, readBack(path("a.ts")).pictures);
}

TEST_F(LiveTest, CtrlCBeforeTheDurationIsOverIsAnInterruption) {
  const auto camera = simulator();
  const auto host = live({"-o", path("a.ts"), "--no-stitch", "--duration", "100"});
  ASSERT_TRUE(grows(path("a.ts"), 1'000)) << host->errors();
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 130) << host->errors();
  EXPECT_GT(readBack(path("a.ts")).pictures, 0);
}

TEST_F(LiveTest, ALostCameraEndsItWithWholeFiles) {
  const auto camera = simulator();
  const auto host = live({"-o", path("a.mp4"), "--size", "480x240"});
  ASSERT_TRUE(grows(path("a.mp4"), 10'000)) << host->errors();
  camera->signal(SIGTERM);
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr("live: the camera was lost"));
  EXPECT_GT(readBack(path("a.mp4")).pictures, 0);
}

TEST_F(LiveTest, ALostCameraIsWaitedForAndTheStreamGoesOn) {
  const auto camera = simulator();
  const auto host = live({"-o", path("a.ts"), "--size", "480x240", "--reconnect", "30"});
  ASSERT_TRUE(grows(path("a.ts"), 50'000)) << host->errors();
  camera->tell("unplug");
  ASSERT_TRUE(host->waitForErrors("the camera was lost; waiting up to 30 s for"));
  const std::uintmax_t before = fs::file_size(path("a.ts"));
  camera->tell("plug");
  ASSERT_TRUE(host->waitForErrors("the camera is there again"));
  ASSERT_TRUE(grows(path("a.ts"), before + 100'000)) << host->errors();
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_TRUE(readBack(path("a.ts")).ordered);
}

TEST_F(LiveTest, ACameraThatDoesNotComeBackEndsIt) {
  const auto camera = simulator();
  const auto host = live({"-o", path("a.mp4"), "--no-stitch", "--reconnect", "0.5"});
  ASSERT_TRUE(grows(path("a.mp4"), 10'000)) << host->errors();
  camera->signal(SIGTERM);
  EXPECT_EQ(host->wait(), 3);
  EXPECT_GE(readBack(path("a.mp4")).pictures, 30);
}

TEST_F(LiveTest, TheBackgroundLetsTheCameraRest) {
  const auto camera = simulator();
  const auto host = live({"-o", path("a.ts"), "--size", "480x240"});
  ASSERT_TRUE(grows(path("a.ts"), 10'000)) << host->errors();
  host->signal(SIGTSTP);
  ASSERT_TRUE(host->waitForErrors("in the background: the camera rests"));
  host->signal(SIGCONT);
  ASSERT_TRUE(host->waitForErrors("active again"));
  ASSERT_TRUE(grows(path("a.ts"), fs::file_size(path("a.ts")) + 100'000)) << host->errors();
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_TRUE(readBack(path("a.ts")).ordered);
}

TEST_F(LiveTest, WhereTheStreamStandsStillTheDurationGoesOn) {
  const auto camera = simulator();
  const auto host = live({"-o", path("a.ts"), "--no-stitch", "--duration", "6"});
  ASSERT_TRUE(grows(path("a.ts"), 10'000)) << host->errors();
  host->signal(SIGTSTP);  // the camera rests, and no picture comes any more
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->errors(), HasSubstr("the stream stood still for"));
  EXPECT_LT(readBack(path("a.ts")).pictures, 150);
}

// -- outputs that fail

TEST_F(LiveTest, AnOutputThatFailsHarmsNoOther) {
  const auto camera = simulator();
  fs::create_symlink("/dev/full", path("full.ts"));
  const auto host =
      live({"-o", "/nowhere/a.mp4", "-o", path("full.ts"), "-o", path("b.mp4"), "--no-stitch", "--duration", "2"});
  EXPECT_EQ(host->wait(), 1);
  EXPECT_THAT(host->errors(), HasSubstr("live: cannot write /nowhere/a.mp4: No such file or directory"));
  EXPECT_THAT(host->errors(), HasSubstr("live: cannot write " + path("full.ts") + ": No space left on device"));
  EXPECT_NEAR(readBack(path("b.mp4")).pictures, 60, kClockSteps);
}

TEST_F(LiveTest, WithoutAnyOutputLeftItEnds) {
  const auto camera = simulator();
  const auto host = live({"-o", "/nowhere/a.mp4", "--no-stitch"});
  EXPECT_EQ(host->wait(), 1);
  EXPECT_THAT(host->errors(), HasSubstr("no output is left"));
}

TEST_F(LiveTest, WrongUsageIsToldBeforeAnythingIsSent) {
  const auto refused = [this](Arguments arguments, const char* words) {
    const auto host = live(std::move(arguments));
    EXPECT_EQ(host->wait(), 2) << words;
    EXPECT_THAT(host->errors(), HasSubstr(words));
  };
  refused({}, "-o tells where the stream goes");
  refused({"-o", "a.avi"}, "a.avi is no output; an output is FILE.mp4, FILE.ts, FILE.flv, FILE.m3u8, -");
  refused({"-o", "a.ts", "-o", "a.ts"}, "-o a.ts is given twice");
  refused({"-o", "a.ts", "--size", "17x16"}, "--size takes WIDTHxHEIGHT");
  refused({"-o", "a.ts", "--no-stitch", "--size", "480x240"}, "--no-stitch passes the camera's pictures on");
  refused({"-o", "a.ts", "--resolution", "16"}, "16 is not a whole number from 0 to 15");
  refused({"-o", "a.ts", "--logo-angle", "5"}, "--logo-angle needs --logo");
  refused({"-o", "a.ts", "--logo", "/nowhere.png"}, "cannot read /nowhere.png: No such file or directory");
}

}  // namespace
}  // namespace zel::test
