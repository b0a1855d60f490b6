#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class PreviewTest : public ZelcamTest {
 protected:
  std::string png() const { return folder.path() + "/picture.png"; }

  // Width and height as a PNG file's first chunk tells them; zeros where it is none.
  static std::pair<int, int> sizeOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (bytes.size() < 24 || bytes.substr(1, 3) != "PNG" || bytes.substr(12, 4) != "IHDR") return {0, 0};
    const auto number = [&bytes](std::size_t at) {
      int value = 0;
      for (std::size_t i = at; i < at + 4; ++i) value = value * 256 + static_cast<unsigned char>(bytes[i]);
      return value;
    };
    return {number(16), number(20)};
  }

  static fs::path media() {
    const char* const named = std::getenv("ZEL_TEST_MEDIA");
    return named != nullptr ? fs::path(named) : fs::path(SOURCE_FOLDER) / "../shared/data";
  }
};

TEST_F(PreviewTest, SavesAPictureOfTheAskedResolution) {
  const auto camera = simulator();
  const auto host = zelcam({"--json", "--timeout", "30", "preview", "--snapshot", png(), "--frames", "5"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  const Json told = lines(*host).at(0);
  EXPECT_EQ(told["frames"], 5);
  EXPECT_GT(told["fps"], 0);
  EXPECT_EQ(told["width"], 1440);
  EXPECT_EQ(told["height"], 720);
  EXPECT_EQ(told["snapshot"], png());
  EXPECT_EQ(sizeOf(png()), std::pair(1440, 720));
}

TEST_F(PreviewTest, APicturesFileIsWhatItsNameSays) {
  const auto camera = simulator();
  const std::string jpeg = folder.path() + "/picture.JPG";
  const auto host = zelcam({"--timeout", "30", "preview", "--snapshot", jpeg});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  std::ifstream file(jpeg, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_EQ(bytes.substr(0, 3), "\xFF\xD8\xFF");
  EXPECT_EQ(bytes.substr(bytes.size() - 2), "\xFF\xD9");
}

TEST_F(PreviewTest, AFileThatIsNoPicturesIsWrongUsage) {
  for (const char* name : {"picture.gif", "picture", "picture.png.txt"}) {
    const auto preview = zelcam({"preview", "--snapshot", name});
    EXPECT_EQ(preview->wait(), 2) << name;
    EXPECT_THAT(preview->errors(), HasSubstr("--snapshot takes FILE.png or FILE.jpg")) << name;
    EXPECT_EQ(zelcam({"thumbnail", "clip.h264", "-o", name})->wait(), 2) << name;
  }
}

TEST_F(PreviewTest, DecodesPicturesSideBySide) {
  const auto camera = simulator();
  const auto host = zelcam({"--json", "--timeout", "30", "preview", "--frames", "5", "--decoder-threads", "2"});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  const Json told = lines(*host).at(0);
  EXPECT_EQ(told["frames"], 5);
  EXPECT_GE(told["received"], 7);  // each thread has one more
  EXPECT_EQ(told["width"], 1440);
}

TEST_F(PreviewTest, RunsUntilItIsStopped) {
  const auto camera = simulator();
  const auto host = zelcam({"--json", "--verbose", "--timeout", "30", "preview"});
  ASSERT_TRUE(host->waitForErrors("the first picture is here"));
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_GT(lines(*host).at(0)["frames"], 0);
}

TEST_F(PreviewTest, TellsThatNoPictureComes) {
  const auto camera = simulator({"--fault", "no-parameter-sets"});
  const auto host = zelcam({"--timeout", "2", "preview", "--snapshot", png()});
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr("no picture came within 2 s"));
  EXPECT_FALSE(fs::exists(png()));
}

TEST_F(PreviewTest, SurvivesACorruptStream) {
  const auto camera = simulator({"--fault", "corrupt-video", "--fault", "lost-keys", "--seed", "3"});
  const auto host = zelcam({"--json", "--timeout", "30", "preview", "--frames", "20"});
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_EQ(lines(*host).at(0)["frames"], 20);
}

TEST_F(PreviewTest, ALostCameraEndsIt) {
  const auto camera = simulator();
  const auto host = zelcam({"--verbose", "--timeout", "30", "preview"});
  ASSERT_TRUE(host->waitForErrors("the first picture is here"));
  camera->signal(SIGTERM);
  EXPECT_EQ(host->wait(), 3);
  EXPECT_THAT(host->errors(), HasSubstr("preview: the camera was lost"));
}

TEST_F(PreviewTest, AFileThatCannotBeWrittenIsNamed) {
  const auto camera = simulator();
  const auto host = zelcam({"--timeout", "30", "preview", "--snapshot", "/nowhere/picture.png"});
  EXPECT_EQ(host->wait(), 1);
  EXPECT_THAT(host->errors(), HasSubstr("cannot write /nowhere/picture.png"));
}

// -- thumbnail

TEST_F(PreviewTest, AThumbnailIsAKeyFramesPicture) {
  const std::string name = "h264/CI1_FT_B.264";
  const fs::path stream = media() / name;
  if (!fs::exists(stream)) GTEST_SKIP() << "$ZEL_TEST_MEDIA, a folder of recordings, has no " << name;
  const auto host = zelcam({"--json", "thumbnail", stream.string(), "-o", png()});
  ASSERT_EQ(host->wait(), 0) << host->errors();
  EXPECT_EQ(lines(*host).at(0), Json({{"thumbnail", png()}, {"width", 352}, {"height", 288}}));
  EXPECT_EQ(sizeOf(png()), std::pair(352, 288));
}

TEST_F(PreviewTest, AThumbnailOfAStreamWithShortStartCodes) {
  const std::string name = "h264/kvs-frames-001-060.h264";
  const fs::path stream = media() / name;
  if (!fs::exists(stream)) GTEST_SKIP() << "$ZEL_TEST_MEDIA, a folder of recordings, has no " << name;
  ASSERT_EQ(zelcam({"thumbnail", stream.string(), "-o", png()})->wait(), 0);
  EXPECT_EQ(sizeOf(png()), std::pair(640, 480));
}

TEST_F(PreviewTest, AFileWithoutAKeyFrameGivesNoThumbnail) {
  const std::string file = folder.path() + "/text";
  std::ofstream(file) << "no video at all";
  const auto host = zelcam({"thumbnail", file, "-o", png()});
  EXPECT_EQ(host->wait(), 1);
  EXPECT_THAT(host->errors(), HasSubstr("has no key frame that can be shown"));
  EXPECT_FALSE(fs::exists(png()));
}

TEST_F(PreviewTest, AThumbnailNeedsToKnowWhereToGoAndHowLargeToBe) {
  EXPECT_EQ(zelcam({"thumbnail"})->wait(), 2);
  EXPECT_THAT(zelcam({"thumbnail", "/nowhere"})->wait(), 2);
  for (const char* size : {"", "10", "0x10", "10x", "1x10", "99999x10", "10x10x10"}) {
    const auto host = zelcam({"thumbnail", "/etc/passwd", "-o", png(), "--size", size});
    EXPECT_EQ(host->wait(), 2) << size;
    EXPECT_THAT(host->errors(), HasSubstr("--size takes WIDTHxHEIGHT")) << size;
  }
}

}  // namespace
}  // namespace zel::test
