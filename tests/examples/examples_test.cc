// Each example against a simulated camera, as a process, and what it made read back.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <ZELTarkaSDK/PictureFile.h>

#include "tests/outputs/read_back.h"
#include "tests/platform/render/pictures.h"
#include "tests/zelcam/process.h"

namespace zel::test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using Bytes = std::vector<std::uint8_t>;
using Arguments = std::vector<std::string>;

// Runs in a process of its own, whose environment and working folder are the test's.
class ExamplesTest : public testing::Test {
 protected:
  ExamplesTest() {
    setenv("ZEL_ACCESSORIES", bus().c_str(), 1);
    EXPECT_EQ(chdir(folder.path().c_str()), 0);
  }

  std::string bus() const { return folder.path() + "/bus"; }

  std::unique_ptr<Process> camera(const std::string& serial = "A1", const Arguments& more = {}) const {
    Arguments arguments = {"--accessories", bus(), "--serial", serial, "--name", "Test camera"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    auto process = std::make_unique<Process>(simulatorProgram(), arguments, folder.path());
    EXPECT_TRUE(process->waitForOutput("is attached")) << process->errors();
    return process;
  }
  std::unique_ptr<Process> example(const std::string& name, const Arguments& arguments = {}) const {
    return std::make_unique<Process>(EXAMPLES "/" + name, arguments, folder.path());
  }

  static Bytes contents(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  const TemporaryFolder folder;
};

TEST_F(ExamplesTest, ConnectAndPrintStatus) {
  const auto attached = camera();
  const auto host = example("connect_and_print_status");
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->output(), HasSubstr("Test camera, serial A1, firmware E1_2.0.1_192\n"));
  EXPECT_THAT(host->output(), HasSubstr("status 1\n"));
  EXPECT_THAT(host->output(), HasSubstr("status 2\npower type 1, battery 100 %\nclock offset "));
}

TEST_F(ExamplesTest, Battery) {
  const auto attached = camera();
  const auto host = example("battery");
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_EQ(host->output(), "battery: 100 %\n");
}

TEST_F(ExamplesTest, BatteryOfACameraThatAnotherHas) {
  const auto attached = camera();
  const auto first = example("film", {"30", "0", "a.ts"});
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (contents("a.ts").empty() && std::chrono::steady_clock::now() < end) std::this_thread::yield();
  const auto host = example("battery");
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), MatchesRegex("camera A1 is in use by process [0-9]+ .*film.\n"));
}

TEST_F(ExamplesTest, CameraInALoopOfTheHostsOwn) {
  const auto attached = camera();
  for (const char* name : {"camera_in_a_poll_loop", "camera_in_a_glib_loop", "camera_in_an_asio_loop"}) {
    const auto host = example(name);
    ASSERT_EQ(host->wait(), 0) << name << ": " << host->errors();
    EXPECT_EQ(host->output(), "battery: 100 %\nbattery: 100 %\nbattery: 100 %\n") << name;
  }
}

TEST_F(ExamplesTest, WatchAndPhotograph) {
  const auto attached = camera();
  const auto host = example("watch_and_photograph", {"2"});
  ASSERT_TRUE(host->waitForOutput("press the camera's key")) << host->errors();
  attached->tell("key 1");
  attached->tell("key 1");
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->output(), MatchesRegex("press the camera's key\n.+jpg: [0-9]+ bytes\n.+jpg: [0-9]+ bytes\n"));
}

TEST_F(ExamplesTest, Film) {
  const auto attached = camera();
  const auto host = example("film", {"1", "640", "a.mp4", "b.ts"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->output(), MatchesRegex("a.mp4: [0-9]+ pictures\nb.ts: [0-9]+ pictures\n"));
  EXPECT_GT(contents("a.mp4").size(), 10'000u);
}

TEST_F(ExamplesTest, BatteryInC) {
  EXPECT_EQ(example("c/battery")->wait(), 3) << "no camera is there";
  const auto attached = camera();
  const auto host = example("c/battery");
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_EQ(host->output(), "battery: 100 %\n");
}

TEST_F(ExamplesTest, WatchInC) {
  const auto attached = camera();
  const auto host = example("c/watch", {"2"});
  ASSERT_TRUE(host->waitForOutput("press the camera's key")) << host->errors();
  attached->tell("key 1");
  attached->tell("key 1");
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->output(), ContainsRegex("jpg: [0-9]+ bytes\n(.*\n)*.+jpg: [0-9]+ bytes\n"));
  EXPECT_THAT(host->output(), HasSubstr("event 7: 1\n"));
}

TEST_F(ExamplesTest, TakeAPhoto) {
  const auto attached = camera();
  const auto host = example("take_a_photo", {"photo.jpg"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->output(), MatchesRegex("IMG_[0-9_]+\\.jpg: [0-9]+ bytes\n"));
  std::string error;
  const auto picture = pictureOfJpeg(contents("photo.jpg"), error);
  ASSERT_NE(picture, nullptr) << error;
  EXPECT_EQ(picture->width(), 3040);
  EXPECT_EQ(picture->height(), 1520);
}

TEST_F(ExamplesTest, TakeAPhotoTellsThatTheCameraRefuses) {
  const auto attached = camera("A1", {"--fault", "refuse=0x0007"});
  const auto host = example("take_a_photo", {"photo.jpg"});
  EXPECT_EQ(host->wait(), 1);
  EXPECT_EQ(host->errors(), "the photo failed: NSOSStatusErrorDomain 101\n");
}

TEST_F(ExamplesTest, TakeAPhotoTellsWhenItCannotBeWritten) {
  const auto attached = camera();
  const auto host = example("take_a_photo", {"no/such/folder/photo.jpg"});
  EXPECT_EQ(host->wait(), 1);
  EXPECT_EQ(host->errors(), "the picture cannot be written\n");
}

TEST_F(ExamplesTest, PreviewToPictures) {
  const auto attached = camera();
  const auto host = example("preview_to_pictures");
  ASSERT_EQ(host->wait(), 0) << host->errors();
  const std::string header = "P6\n1440 720\n255\n";
  for (const char* name : {"preview1.ppm", "preview2.ppm", "preview3.ppm"}) {
    const Bytes file = contents(name);
    ASSERT_EQ(file.size(), header.size() + 1440 * 720 * 3) << name;
    EXPECT_EQ(std::string(file.begin(), file.begin() + 16), header);
    const std::uint8_t* const sky = file.data() + header.size() + (100 * 1440 + 300) * 3;
    EXPECT_GT(sky[2], sky[0] + 40) << name;  // the sky of the camera's scene is blue
  }
  EXPECT_EQ(contents("preview4.ppm").size(), 0U);
}

// The frames of an ADTS file of AAC-LC in 48 kHz stereo, each behind a header of 7 bytes; -1 where it is damaged.
int framesOfAdts(const Bytes& file) {
  int frames = 0;
  for (std::size_t at = 0; at < file.size(); ++frames) {
    if (file.size() - at < 7 || file[at] != 0xFF || file[at + 1] != 0xF1) return -1;
    if (file[at + 2] != 0x4C || (file[at + 3] & 0xFC) != 0x80) return -1;
    const std::size_t size = (file[at + 3] & 3U) << 11 | file[at + 4] << 3 | file[at + 5] >> 5;
    if (size <= 7 || size > file.size() - at) return -1;
    at += size;
  }
  return frames;
}

TEST_F(ExamplesTest, LiveToAFile) {
  const auto attached = camera();
  const auto host = example("live_to_a_file", {"live.h264", "live.aac", "4"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  const ReadBack video = readBack("live.h264");
  EXPECT_EQ(video.width, 1440);
  EXPECT_EQ(video.height, 720);
  EXPECT_GE(video.pictures, 5);  // 120 on a machine that has the time
  const int frames = framesOfAdts(contents("live.aac"));
  EXPECT_GE(frames, 20);  // of 47 a second
  EXPECT_EQ(readBack("live.aac").audioFrames, frames);
}

TEST_F(ExamplesTest, RecordToMp4) {
  const auto attached = camera();
  const auto host = example("record_to_mp4", {"film.mp4", "2"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->output(), MatchesRegex("film.mp4: [0-9]+ pictures, [0-9]+ frames of sound\n"));
  const ReadBack film = readBack("film.mp4");
  EXPECT_EQ(film.width, 1440);
  EXPECT_EQ(film.height, 720);
  EXPECT_GE(film.pictures, 30);  // of 60, where the machine has no time
  EXPECT_LE(film.pictures, 61);
  EXPECT_GE(film.audioFrames, 45);
  EXPECT_FALSE(film.spherical);
}

TEST_F(ExamplesTest, RecordToMp4Stitches) {
  const auto attached = camera();
  const auto host = example("record_to_mp4", {"film.mp4", "2", "3", "480"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  const ReadBack film = readBack("film.mp4");
  EXPECT_EQ(film.width, 480);
  EXPECT_EQ(film.height, 240);
  EXPECT_TRUE(film.spherical);
}

TEST_F(ExamplesTest, RecordToMp4TellsThatTheCameraRefuses) {
  const auto attached = camera("A1", {"--fault", "refuse=0x0004"});
  const auto host = example("record_to_mp4", {"film.mp4", "1"});
  EXPECT_EQ(host->wait(), 1);
  EXPECT_EQ(host->errors(), "failed to open camera video stream\n");
}

TEST_F(ExamplesTest, StitchAPhoto) {
  const auto attached = camera();
  ASSERT_EQ(example("take_a_photo", {"photo.jpg"})->wait(), 0);
  const auto host = example("stitch_a_photo", {"photo.jpg", render::kFactoryOffset, "panorama.jpg"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_EQ(host->output(), "panorama.jpg: 3040 x 1520\n");
  const Bytes panorama = contents("panorama.jpg");
  EXPECT_THAT(std::string(panorama.begin(), panorama.end()), HasSubstr("equirectangular"));
  std::string error;
  EXPECT_NE(pictureOfJpeg(panorama, error), nullptr) << error;
}

TEST_F(ExamplesTest, StitchAPhotoTellsWhatIsWrongWithThePhoto) {
  const auto host = example("stitch_a_photo", {"no.jpg", render::kFactoryOffset, "panorama.jpg"});
  EXPECT_EQ(host->wait(), 1);
  EXPECT_THAT(host->errors(), testing::StartsWith("no.jpg: "));
}

TEST_F(ExamplesTest, TwoCameras) {
  const auto first = camera("A1");
  const auto second = camera("B2");
  const auto host = example("two_cameras", {"B2", "A1"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->output(), MatchesRegex("B2: battery 100 %, [1-9][0-9]* video frames, [1-9][0-9]* bytes\n"
                                           "A1: battery 100 %, [1-9][0-9]* video frames, [1-9][0-9]* bytes\n"));
}

TEST_F(ExamplesTest, TwoCamerasTellsWhichIsMissing) {
  const auto first = camera("A1");
  const auto host = example("two_cameras", {"A1", "B2"});
  EXPECT_EQ(host->wait(), 1);
  EXPECT_EQ(host->errors(), "no camera is attached\nthat was serial B2\n");
}

TEST_F(ExamplesTest, HostEventLoop) {
  const auto attached = camera();
  const auto host = example("host_event_loop");
  ASSERT_TRUE(host->waitForOutput("status 2\n"));
  host->tell("");
  EXPECT_TRUE(host->waitForOutput("battery 100 %\n"));
  host->endInput();
  EXPECT_EQ(host->wait(), 0) << host->errors();
}

TEST_F(ExamplesTest, HostEventLoopOutlivesItsCamera) {
  const auto attached = camera();
  const auto host = example("host_event_loop");
  ASSERT_TRUE(host->waitForOutput("status 2\n"));
  attached->signal(SIGTERM);
  EXPECT_TRUE(host->waitForOutput("status 0\n"));
  host->tell("");
  EXPECT_TRUE(host->waitForOutput("no answer\n"));
  host->endInput();
  EXPECT_EQ(host->wait(), 0) << host->errors();
}

TEST_F(ExamplesTest, AllSayThatThereIsNoCamera) {
  const std::vector<std::pair<std::string, Arguments>> hosts = {
      {"connect_and_print_status", {}},    {"take_a_photo", {"photo.jpg"}},
      {"preview_to_pictures", {}},         {"live_to_a_file", {"live.h264", "live.aac", "2"}},
      {"two_cameras", {"A1", "B2"}},       {"host_event_loop", {}},
      {"record_to_mp4", {"film.mp4", "2"}}};
  for (const auto& [name, arguments] : hosts) {
    const auto host = example(name, arguments);
    EXPECT_EQ(host->wait(), 1) << name;
    EXPECT_THAT(host->errors(), testing::StartsWith("no camera is attached\n")) << name;
    EXPECT_EQ(host->output(), "") << name;
  }
  EXPECT_NE(access("photo.jpg", F_OK), 0);
  EXPECT_NE(access("live.h264", F_OK), 0);
}

TEST_F(ExamplesTest, AllSayWhyTheAccessoryFolderIsRefused) {
  ASSERT_EQ(mkdir(bus().c_str(), 0700), 0);
  ASSERT_EQ(chmod(bus().c_str(), 0777), 0);
  for (const char* name : {"connect_and_print_status", "preview_to_pictures", "host_event_loop"}) {
    const auto host = example(name);
    EXPECT_EQ(host->wait(), 1) << name;
    EXPECT_THAT(host->errors(), HasSubstr("can be written by others; run: chmod go-w")) << name;
  }
}

TEST_F(ExamplesTest, ThoseThatTakeArgumentsTellWhich) {
  for (const char* name : {"take_a_photo", "live_to_a_file", "two_cameras", "record_to_mp4", "stitch_a_photo"}) {
    const auto host = example(name);
    EXPECT_EQ(host->wait(), 1) << name;
    EXPECT_THAT(host->errors(), MatchesRegex("usage: " + std::string(name) + " [A-Z].*\n"));
  }
}

}  // namespace
}  // namespace zel::test
