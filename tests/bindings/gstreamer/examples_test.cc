// The pipelines of examples/gstreamer/ and of the page, as processes.

#include <filesystem>
#include <fstream>
#include <regex>

#include "tests/bindings/gstreamer/plugin_test.h"
#include "tests/outputs/read_back.h"

namespace zel::test {
namespace {

const std::string kExamples = SOURCES "/examples/gstreamer/";

std::string textOf(const std::filesystem::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

class GStreamerExamplesTest : public PluginTest {
 protected:
  GStreamerExamplesTest() {
    attach();
    EXPECT_EQ(chdir(work_.path().c_str()), 0);
  }

  // Runs a pipeline until its file is so large, and ends it as a person would.
  ReadBack film(const std::string& script, const std::string& file, std::uintmax_t bytes) {
    Process pipeline(kExamples + script, {}, work_.path());
    std::error_code none;
    EXPECT_TRUE(eventually([&] { return std::filesystem::file_size(file, none) + 1 > bytes; })) << pipeline.errors();
    pipeline.signal(SIGINT);
    EXPECT_EQ(pipeline.wait(), 0) << pipeline.errors();
    return readBack(work_.path() + "/" + file);
  }

  const TemporaryFolder work_;
};

TEST_F(GStreamerExamplesTest, Film) {
  const ReadBack film = this->film("film.sh", "film.mkv", 100'000);
  EXPECT_EQ(film.videoCodec, AV_CODEC_ID_H264);
  EXPECT_EQ(film.width, 1440);
  EXPECT_TRUE(film.beginsWithKey);
  EXPECT_TRUE(film.ordered);
  EXPECT_EQ(film.audioFrames, 0);
}

TEST_F(GStreamerExamplesTest, FilmWithSound) {
  const ReadBack film = this->film("film_with_sound.sh", "film.mkv", 100'000);
  EXPECT_EQ(film.audioCodec, AV_CODEC_ID_AAC);
  EXPECT_GT(film.pictures, 0);
  EXPECT_GT(film.audioFrames, 0);
  EXPECT_TRUE(film.ordered);
}

TEST_F(GStreamerExamplesTest, Panorama) {
  const ReadBack film = this->film("panorama.sh", "panorama.mkv", 100'000);
  EXPECT_EQ(film.videoCodec, AV_CODEC_ID_H264);
  EXPECT_EQ(film.width, 1920);
  EXPECT_EQ(film.height, 960);
  EXPECT_GT(film.audioFrames, 0);
}

// Whatever screen there is, nothing is shown on it; the sink for DirectFB ends the process where it has none.
TEST_F(GStreamerExamplesTest, Window) {
  unsetenv("DISPLAY");
  unsetenv("WAYLAND_DISPLAY");
  setenv("GST_PLUGIN_FEATURE_RANK", "dfbvideosink:NONE,fbdevsink:NONE,kmssink:NONE,waylandsink:NONE", 1);
  Process pipeline(kExamples + "window.sh", {}, work_.path());
  ASSERT_TRUE(pipeline.waitForOutput("Redistribute latency")) << pipeline.errors();
  pipeline.signal(SIGINT);
  EXPECT_EQ(pipeline.wait(), 0) << pipeline.errors();
}

TEST_F(GStreamerExamplesTest, Devices) {
  Process monitor(kExamples + "devices.sh", {}, work_.path());
  ASSERT_TRUE(monitor.waitForOutput("gst-launch-1.0 zelcamsrc serial-number=E1A0001 ! ...")) << monitor.output();
  camera().unplug();
  EXPECT_TRUE(monitor.waitForOutput("Device removed")) << monitor.output();
}

TEST_F(GStreamerExamplesTest, ThePagesPipelinesAreTheExamples) {
  std::vector<std::string> examples;
  for (const auto& example : std::filesystem::directory_iterator(kExamples)) {
    const std::string text = textOf(example.path());
    examples.push_back(text.substr(text.find("exec ") + 5, text.rfind('\n') - text.find("exec ") - 5));
  }
  std::vector<std::string> shown;
  const std::string page = textOf(SOURCES "/docs/gstreamer.md");
  const std::regex line("\n    (gst-[^\n]+)");
  for (std::sregex_iterator one(page.begin(), page.end(), line), end; one != end; ++one) shown.push_back((*one)[1]);
  EXPECT_THAT(shown, testing::UnorderedElementsAreArray(examples));
}

}  // namespace
}  // namespace zel::test
