// What `zelcam live` does where its camera goes, or says no, on the way to the first picture.

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <ostream>
#include <string>

#include "tests/zelcam/live_test.h"

namespace zel::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Values;

const std::string kMarker = "0x402E", kPreview = "0x0004", kSound = "0x000E", kOffset = "0x400F";
const std::string kNoKeys = "lost-keys=1";
constexpr bool kUnstitched = true;

struct StartCase {
  const char* name;
  std::string fault;
  std::string lastRequest;  // nothing that matters is asked for after it
  bool unstitched = false;
};

void PrintTo(const StartCase& given, std::ostream* out) { *out << given.name; }

class LiveStartTest : public LiveTest {
 protected:
  std::unique_ptr<Process> faultyCamera(const std::string& fault) const {
    return simulator({"--verbose", "--fault", fault});
  }

  std::unique_ptr<Process> host(const char* timeout, Arguments more = {}) const {
    more.insert(more.begin(), {"--timeout", timeout, "live", "-o", path("a.mp4")});
    return zelcam(more);
  }
  std::unique_ptr<Process> host(const StartCase& given) const {
    return host("30", given.unstitched ? Arguments{"--no-stitch"} : Arguments{});
  }

  bool leftAFile() const {
    const fs::directory_iterator files(folder.path());
    return std::any_of(begin(files), end(files), [](const auto& file) { return file.path().extension() == ".mp4"; });
  }
};

// -- a camera that goes

class LiveUnpluggedTest : public LiveStartTest, public testing::WithParamInterface<StartCase> {};

TEST_P(LiveUnpluggedTest, TellsThatTheCameraWasLostAndLeavesNoFile) {
  const auto camera = faultyCamera(GetParam().fault);
  const auto zelcam = host(GetParam());
  ASSERT_TRUE(camera->waitForErrors("request " + GetParam().lastRequest)) << zelcam->errors();
  camera->signal(SIGTERM);
  EXPECT_EQ(zelcam->wait(), 3);
  EXPECT_EQ(zelcam->errors(), "zelcam: live: the camera was lost\n");
  EXPECT_FALSE(leftAFile());
}

INSTANTIATE_TEST_SUITE_P(InEveryState, LiveUnpluggedTest,
                         Values(StartCase{"WhilePreviewIsAskedFor", "no-reply=" + kPreview, kPreview},
                                StartCase{"WhileSoundIsAskedFor", "no-reply=" + kSound, kSound},
                                StartCase{"WhileTheOffsetIsAskedFor", "no-reply=" + kOffset, kOffset},
                                StartCase{"BeforeTheFirstPicture", kNoKeys, kOffset},
                                StartCase{"UnstitchedWhilePreviewIsAskedFor", "no-reply=" + kPreview, kSound,
                                          kUnstitched},
                                StartCase{"UnstitchedWhileSoundIsAskedFor", "no-reply=" + kSound, kSound, kUnstitched},
                                StartCase{"UnstitchedBeforeTheFirstPicture", kNoKeys, kSound, kUnstitched}),
                         [](const auto& given) { return given.param.name; });

TEST_F(LiveStartTest, UnpluggedBeforeItsFirstFrameACameraIsWaitedForUntilTheTimeOut) {
  const auto camera = faultyCamera("no-reply=" + kMarker);
  const auto zelcam = host("6");
  ASSERT_TRUE(camera->waitForErrors("request " + kMarker)) << zelcam->errors();
  camera->signal(SIGTERM);
  EXPECT_EQ(zelcam->wait(), 3);
  EXPECT_EQ(zelcam->errors(),
            "zelcam: no camera was attached within 6 s; looked in " + bus() + ", where zelcam-sim would attach one\n");
  EXPECT_FALSE(leftAFile());
}

TEST_F(LiveStartTest, ACameraThatFallsSilentIsLost) {
  const auto camera = faultyCamera("no-reply=" + kOffset);
  const auto zelcam = host("30");
  ASSERT_TRUE(camera->waitForErrors("request " + kOffset)) << zelcam->errors();
  camera->tell("silence 600");
  EXPECT_EQ(zelcam->wait(), 3);
  EXPECT_EQ(zelcam->errors(), "zelcam: live: the camera was lost\n");
}

TEST_F(LiveStartTest, ACameraThatComesBackIsAskedAgain) {
  const auto camera = faultyCamera("no-reply=" + kOffset);
  const auto zelcam = host("30", {"--reconnect", "30"});
  ASSERT_TRUE(camera->waitForErrors("request " + kOffset)) << zelcam->errors();
  camera->tell("unplug");
  ASSERT_TRUE(zelcam->waitForErrors("the camera was lost; waiting up to 30 s for"));
  camera->tell("plug");
  ASSERT_TRUE(zelcam->waitForErrors("the camera is there again"));
  zelcam->signal(SIGINT);
  EXPECT_EQ(zelcam->wait(), 130) << zelcam->errors();
}

TEST_F(LiveStartTest, ACameraThatNeverAnswersIsGivenUp) {
  const auto camera = faultyCamera("no-reply=" + kSound);
  const auto zelcam = host("6");
  EXPECT_EQ(zelcam->wait(), 3);
  EXPECT_EQ(zelcam->errors(), "zelcam: live: no picture came within 6 s\n");
  EXPECT_FALSE(leftAFile());
}

// -- a camera that says no

struct RefusedCase {
  StartCase start;
  std::string words;
};

void PrintTo(const RefusedCase& given, std::ostream* out) { *out << given.start.name; }

class LiveRefusedTest : public LiveStartTest, public testing::WithParamInterface<RefusedCase> {};

TEST_P(LiveRefusedTest, TellsWhatTheCameraRefused) {
  const auto camera = faultyCamera(GetParam().start.fault);
  const auto zelcam = host(GetParam().start);
  EXPECT_EQ(zelcam->wait(), 1);
  EXPECT_THAT(zelcam->errors(), HasSubstr("zelcam: live: " + GetParam().words + "\n"));
  EXPECT_FALSE(leftAFile());
}

INSTANTIATE_TEST_SUITE_P(
    EachRequest, LiveRefusedTest,
    Values(RefusedCase{{"Preview", "refuse=" + kPreview, kPreview},
                       "failed to open camera video stream (zelcam.liveSource 4)"},
           RefusedCase{{"Sound", "refuse=" + kSound, kSound}, "failed to switch audio (zelcam.liveSource 6)"},
           RefusedCase{{"TheOffset", "refuse=" + kOffset, kOffset},
                       "failed to get camera offset (zelcam.liveSource 3)"},
           RefusedCase{{"UnstitchedPreview", "refuse=" + kPreview, kPreview, kUnstitched},
                       "failed to open camera video stream"},
           RefusedCase{{"UnstitchedSound", "refuse=" + kSound, kSound, kUnstitched}, "failed to switch audio"}),
    [](const auto& given) { return given.param.start.name; });

}  // namespace
}  // namespace zel::test
