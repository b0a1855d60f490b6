#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "tests/sanitizers.h"
#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::SizeIs;

class DemoTest : public ZelcamTest {
 protected:
  DemoTest() { setenv("TMPDIR", temporary().c_str(), 1); }
  void SetUp() override {
    if (kSanitized) GTEST_SKIP() << "all of it at once takes too long where everything is slowed down";
  }

  // Where the demo keeps what it needs for itself.
  std::string temporary() const {
    fs::create_directory(folder.path() + "/temporary");
    return folder.path() + "/temporary";
  }
  std::string out() const { return folder.path() + "/out"; }
};

TEST_F(DemoTest, ShowsEverythingAndReadsItBack) {
  const auto demo = zelcam({"--json", "demo", "-o", out(), "--duration", "2"});
  EXPECT_TRUE(demo->waitForErrors("$ zelcam record start"));
  EXPECT_TRUE(demo->waitForErrors("$ zelcam live"));
  ASSERT_EQ(demo->wait(), 0) << demo->errors();
  const auto rows = lines(*demo);
  ASSERT_THAT(rows, SizeIs(7));
  for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(rows[i]["holds"], "mjpeg,3040,1520,1") << i;
  EXPECT_EQ(rows[1]["what"], "panorama");
  EXPECT_EQ(rows[5]["holds"], "png,1440,720,1");
  EXPECT_EQ(rows[6]["file"], out() + "/live.mp4");
  EXPECT_THAT(rows[6]["holds"].get<std::string>(), testing::MatchesRegex("h264,1920,960,[0-9]+ aac,[0-9]+"));
  for (const auto& row : rows) EXPECT_EQ(fs::file_size(row["file"].get<std::string>()), row["bytes"]);
  EXPECT_TRUE(fs::is_empty(temporary()));
}

TEST_F(DemoTest, EndsWithItsProgramsWhenItIsInterrupted) {
  const auto demo = zelcam({"demo", "-o", out()});
  ASSERT_TRUE(demo->waitForOutput("status 1 (session open)"));
  demo->signal(SIGINT);
  EXPECT_EQ(demo->wait(), 130) << demo->errors();
  EXPECT_TRUE(fs::is_empty(temporary()));
}

TEST_F(DemoTest, SaysWhenTheSimulatorIsMissing) {
  const std::string alone = folder.path() + "/zelcam";
  fs::copy_file(zelcamProgram(), alone);
  Process demo(alone, {"demo", "-o", out()}, folder.path());
  EXPECT_EQ(demo.wait(), 1);
  EXPECT_EQ(demo.errors(), "zelcam: demo: the simulator, " + folder.path() + "/zelcam-sim, is missing\n");
}

TEST_F(DemoTest, SaysWhenTheFolderCannotBeMade) {
  const auto demo = zelcam({"demo", "-o", "/proc/demo-out"});
  EXPECT_EQ(demo->wait(), 1);
  EXPECT_THAT(demo->errors(), HasSubstr("zelcam: demo: /proc/demo-out cannot be made: "));
}

}  // namespace
}  // namespace zel::test
