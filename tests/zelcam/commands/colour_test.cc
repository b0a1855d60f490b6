// Colour bars as a camera may declare them, and what becomes of their colours in all that the real program writes.

#include <gmock/gmock.h>

#include <cmath>
#include <fstream>

#include "tests/platform/render/pictures.h"
#include "tests/zelcam/colour_bars.h"
#include "tests/zelcam/png_picture.h"
#include "tests/zelcam/zelcam_test.h"

namespace zel::test {
namespace {

constexpr double kExact = 1, kLossy = 2;  // steps of 255

class ColourTest : public ZelcamTest, public testing::WithParamInterface<ColourTags> {
 protected:
  std::string path(const std::string& name) const { return folder.path() + "/" + name; }

  std::string film() const {
    const std::vector<std::uint8_t> stream = colourBars(GetParam());
    EXPECT_FALSE(stream.empty());
    std::ofstream(path("bars.h264"), std::ios::binary)
        .write(reinterpret_cast<const char*>(stream.data()), static_cast<std::streamsize>(stream.size()));
    return path("bars.h264");
  }

  void run(Arguments arguments) const {
    arguments.insert(arguments.begin(), {"--timeout", "30"});
    const auto host = zelcam(std::move(arguments));
    ASSERT_EQ(host->wait(), 0) << host->errors();
  }

  static void expectColours(const std::array<Rgb, 8>& bars, double within) {
    for (std::size_t bar = 0; bar < bars.size(); ++bar)
      for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(bars[bar][i], kBarColours[bar][i], within) << "bar " << bar << ", colour " << i;
  }

  void expectPicture(const std::string& name, bool stitched) const {
    const auto picture = pngIn(path(name));
    ASSERT_TRUE(picture) << name;
    ASSERT_EQ(std::pair(picture->width, picture->height), std::pair(640, 320));
    expectColours(stitched ? barsInPanorama(*picture) : barsIn(*picture), kExact);
  }

  void expectVideo(const std::string& name, bool stitched, double within, bool isComplete = true) const {
    SCOPED_TRACE(name);
    const auto read = firstPictureIn(path(name));
    ASSERT_TRUE(read);
    ASSERT_EQ(std::pair(read->picture.width, read->picture.height), std::pair(640, 320));
    expectColours(stitched ? barsInPanorama(read->picture) : barsIn(read->picture), within);
    EXPECT_EQ(read->isComplete, isComplete);
  }
};

TEST_P(ColourTest, AThumbnailShowsThem) {
  const std::string file = film();
  run({"thumbnail", file, "-o", path("a.png")});
  expectPicture("a.png", false);
  run({"thumbnail", file, "-o", path("b.png"), "--offset", render::kFactoryOffset, "--size", "640x320"});
  expectPicture("b.png", true);
}

TEST_P(ColourTest, ASnapshotShowsThem) {
  const auto camera = simulator({"--video", film()});
  run({"preview", "--snapshot", path("a.png")});
  expectPicture("a.png", false);
  run({"preview", "--snapshot", path("b.png"), "--stitch", "--frames", "2"});
  expectPicture("b.png", true);
}

TEST_P(ColourTest, AStitchedStreamShowsThemAndTellsAllOfItsColours) {
  const auto camera = simulator({"--video", film()});
  run({"live", "-o", path("a.mp4"), "-o", path("a.ts"), "-o", path("a.flv"), "--size", "640x320", "--duration", "1"});
  for (const char* name : {"a.mp4", "a.ts", "a.flv"}) expectVideo(name, true, kLossy);
}

// What the camera leaves untold an MP4 file tells; in the others the stream is alone with what it says.
TEST_P(ColourTest, AStreamThatIsPassedOnShowsThem) {
  const auto camera = simulator({"--video", film()});
  run({"live", "-o", path("a.mp4"), "-o", path("a.ts"), "-o", path("a.flv"), "--no-stitch", "--duration", "1"});
  expectVideo("a.mp4", false, kExact);
  const bool isTold = GetParam().number.has_value();
  for (const char* name : {"a.ts", "a.flv"}) expectVideo(name, false, kExact, isTold);
}

INSTANTIATE_TEST_SUITE_P(Tags, ColourTest,
                         testing::Values(ColourTags{"Untold", false, std::nullopt},
                                         ColourTags{"FullRangeAlone", true, std::nullopt},
                                         ColourTags{"Limited601", false, 6}, ColourTags{"Full601", true, 6},
                                         ColourTags{"Limited709", false, 1}, ColourTags{"Full709", true, 1}),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace zel::test
