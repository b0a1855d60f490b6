#include "platform/render/stitching_render.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "simulator/fisheye.h"
#include "simulator/scene.h"
#include "tests/platform/render/pictures.h"

namespace zel::render {
namespace {

using platform::MemoryPixelBuffer;
using platform::PixelBufferRef;
using testing::ElementsAre;
using testing::IsEmpty;

const PixelBufferRef& camerasPicture() {
  static const PixelBufferRef picture =
      nv12Of(simulator::FisheyeProjector(simulator::factoryLensOffset(), 640, 320, 960, 480)
                 .project(simulator::Scene(960, 480).at(1.25)));
  return picture;
}

bool isSame(const platform::PixelBuffer& a, const platform::PixelBuffer& b) {
  return meanSquare(a.luma(), b.luma()) == 0 && meanSquare(a.chroma(), b.chroma()) == 0;
}

class StitchingRenderTest : public testing::Test {
 protected:
  PixelBufferRef rendered() { return render.renderVideo(camerasPicture()); }

  // The luma below the camera.
  static int nadir(const platform::PixelBuffer& picture) { return at(picture.luma(), 120, 119); }

  static constexpr int kSide = 16;
  // 16 x 16 pixels: white, or red above and white below.
  static platform::RgbaImage white(bool redAbove = false) {
    std::vector<std::uint8_t> pixels(4 * kSide * kSide, 255);
    for (std::size_t i = 0; redAbove && i < pixels.size() / 2; ++i) pixels[i] = i % 4 == 1 || i % 4 == 2 ? 0 : 255;
    return {kSide, kSide, std::move(pixels)};
  }
  static platform::RgbaImage twoColours() { return white(true); }

  std::vector<std::string> faults;
  StitchingRender render{{240, 120}, {.threads = 2}, [this](const std::string& fault) { faults.push_back(fault); }};
};

TEST_F(StitchingRenderTest, MakesWhatTheStitcherMakes) {
  render.setOffset(kFactoryOffset);
  const auto image = rendered();
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->width(), 240);
  EXPECT_EQ(image->height(), 120);
  const auto stitcher = Stitcher::create(kFactoryOffset, {240, 120}, {.threads = 1}).stitcher;
  const auto expected = MemoryPixelBuffer::create(240, 120);
  ASSERT_TRUE(stitcher->stitch(*camerasPicture(), outputOf(*expected)));
  EXPECT_TRUE(isSame(*image, *expected));
  EXPECT_THAT(faults, IsEmpty());
}

TEST_F(StitchingRenderTest, MakesNothingWithoutAnOffsetAndSaysSoOnce) {
  for (int count = 0; count < 5; ++count) EXPECT_EQ(rendered(), nullptr);
  render.setOffset("");
  EXPECT_EQ(rendered(), nullptr);
  EXPECT_THAT(faults, ElementsAre("lens offset: the text is empty"));
}

TEST_F(StitchingRenderTest, TellsEachOffsetsFaultOnce) {
  for (int count = 0; count < 3; ++count) {
    for (const char* offset : {"2", "2_0.5", "nonsense"}) {
      render.setOffset(offset);
      EXPECT_EQ(rendered(), nullptr);
    }
  }
  EXPECT_THAT(faults,
              ElementsAre("lens offset: 16 fields are needed, not 1", "lens offset: 16 fields are needed, not 2",
                          "lens offset: the number of lenses is not a whole number"));
  render.setOffset(kFactoryOffset);
  EXPECT_NE(rendered(), nullptr);
  render.setOffset("nonsense");
  EXPECT_EQ(rendered(), nullptr);  // the one before does not count any more
}

TEST_F(StitchingRenderTest, TellsNoMoreThanSixteenFaults) {
  for (int fields = 1; fields < 40; ++fields) {
    std::string offset = "2";
    for (int field = 0; field < fields + 20; ++field) offset += "_1";
    render.setOffset(offset);
  }
  EXPECT_EQ(faults.size(), 16u);
}

TEST_F(StitchingRenderTest, RefusesWhatIsNoPictureOfACamera) {
  render.setOffset(kFactoryOffset);
  EXPECT_EQ(render.renderVideo(nullptr), nullptr);
  EXPECT_THAT(faults, IsEmpty());
  EXPECT_EQ(render.renderVideo(MemoryPixelBuffer::create(3, 2)), nullptr);
  EXPECT_EQ(render.renderVideo(MemoryPixelBuffer::create(3, 2)), nullptr);
  EXPECT_THAT(faults, ElementsAre("stitching: no panorama can be made of a picture of 3 x 2"));
  EXPECT_NE(rendered(), nullptr);
}

TEST_F(StitchingRenderTest, TakesPicturesOfAnotherSize) {
  render.setOffset(kFactoryOffset);
  ASSERT_NE(rendered(), nullptr);
  const auto plain = render.renderVideo(MemoryPixelBuffer::filled(300, 150, 90, 128, 128));
  ASSERT_NE(plain, nullptr);
  EXPECT_EQ(at(plain->luma(), 100, 60), 90);
}

// Left 150, right 150 / r: after the first picture the lenses are equal, and then the right one is dimmed.
TEST_F(StitchingRenderTest, MatchesTheLensesOfAPhotoAtOnceAndThoseOfAVideoSlowly) {
  const auto world = [](int right) {
    const auto picture = MemoryPixelBuffer::filled(640, 320, 150, 128, 128);
    for (std::size_t row = 0; row < 320; ++row)
      std::fill_n(picture->lumaRow(row).begin() + 320, 320, static_cast<std::uint8_t>(right));
    return picture;
  };
  const auto difference = [&](bool isVideo) {
    StitchingRender fresh({240, 120}, {.threads = 2}, {});
    fresh.setOffset(kFactoryOffset);
    fresh.setIsRenderVideo(isVideo);
    fresh.renderVideo(world(150));
    const auto image = fresh.renderVideo(world(120));
    return at(image->luma(), 120, 60) - at(image->luma(), 0, 60);  // forward and backward
  };
  EXPECT_NEAR(difference(false), 0, 1);
  EXPECT_NEAR(difference(true), 26, 2);  // an eighth of log(150 / 120): 147.9 and 121.7
}

TEST_F(StitchingRenderTest, UsesItsImagesAgain) {
  render.setOffset(kFactoryOffset);
  std::set<const void*> places;
  for (int count = 0; count < 20; ++count) places.insert(rendered()->luma().data);
  EXPECT_EQ(places.size(), 1u);
}

TEST_F(StitchingRenderTest, LeavesAnImageAloneThatIsInUse) {
  render.setOffset(kFactoryOffset);
  const auto dark = render.renderVideo(MemoryPixelBuffer::filled(640, 320, 40, 128, 128));
  const auto bright = render.renderVideo(MemoryPixelBuffer::filled(640, 320, 200, 128, 128));
  EXPECT_EQ(at(dark->luma(), 100, 60), 40);
  EXPECT_EQ(at(bright->luma(), 100, 60), 200);
}

TEST_F(StitchingRenderTest, MakesNoMoreImagesThanItMay) {
  render.setOffset(kFactoryOffset);
  std::vector<PixelBufferRef> kept;
  for (int count = 0; count < 16; ++count) {
    kept.push_back(rendered());
    ASSERT_NE(kept.back(), nullptr) << count;
  }
  EXPECT_EQ(rendered(), nullptr);
  EXPECT_EQ(rendered(), nullptr);
  EXPECT_THAT(faults, ElementsAre("stitching: all of the 16 stitched pictures are still in use"));
  kept.pop_back();
  EXPECT_NE(rendered(), nullptr);
}

TEST_F(StitchingRenderTest, ImagesOutliveTheRenderer) {
  PixelBufferRef image;
  {
    StitchingRender other({240, 120}, {.threads = 2}, {});
    other.setOffset(kFactoryOffset);
    image = other.renderVideo(MemoryPixelBuffer::filled(640, 320, 40, 128, 128));
  }
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(at(image->luma(), 100, 60), 40);
}

TEST_F(StitchingRenderTest, ShowsTheLogoFromTheNextPictureOn) {
  render.setLogoImage(white());  // before there is an offset
  render.setOffset(kFactoryOffset);
  const auto with = rendered();
  EXPECT_EQ(nadir(*with), 255);
  render.setLogoImage(std::nullopt);
  const auto without = rendered();
  EXPECT_LT(nadir(*without), 200);
  render.setLogoImage(white());
  EXPECT_TRUE(isSame(*rendered(), *with));
}

TEST_F(StitchingRenderTest, TurnsTheLogo) {
  render.setOffset(kFactoryOffset);
  render.setLogoImage(twoColours());
  // Forward is the middle column: 10 degrees from the nadir the logo's top is there, and its foot behind.
  const auto ahead = [](const platform::PixelBuffer& picture) { return at(picture.luma(), 120, 113); };
  const auto behind = [](const platform::PixelBuffer& picture) { return at(picture.luma(), 0, 113); };
  const auto straight = rendered();
  EXPECT_EQ(ahead(*straight), 76);  // red: 0.299 of 255
  EXPECT_EQ(behind(*straight), 255);
  render.setLogoAngle(180);
  const auto turned = rendered();
  EXPECT_EQ(ahead(*turned), 255);
  EXPECT_EQ(behind(*turned), 76);
}

TEST_F(StitchingRenderTest, KeepsTheLogoWithAnotherOffset) {
  render.setOffset(kFactoryOffset);
  render.setLogoImage(white());
  EXPECT_EQ(nadir(*rendered()), 255);
  render.setOffset("2_750_760_760_0_0_0_750_2280_760_180_0_0_3040_1520_7");
  EXPECT_EQ(nadir(*rendered()), 255);
}

std::shared_ptr<MemoryPixelBuffer> grey(const platform::PictureColour& colour) {
  const auto picture = MemoryPixelBuffer::filled(640, 320, 90, 128, 128);
  picture->setColour(colour);
  return picture;
}

constexpr platform::PictureColour k709{platform::ColourMatrix::bt709, 1, 13};

TEST_F(StitchingRenderTest, GivesEachImageTheColoursOfItsPicture) {
  render.setOffset(kFactoryOffset);
  EXPECT_EQ(rendered()->colour(), platform::PictureColour());
  EXPECT_EQ(render.renderVideo(grey(k709))->colour(), k709);
  EXPECT_EQ(rendered()->colour(), platform::PictureColour());  // in the same memory
}

TEST_F(StitchingRenderTest, DrawsTheLogoByThePicturesMatrix) {
  render.setOffset(kFactoryOffset);
  render.setLogoImage(twoColours());
  const auto red = [](const PixelBufferRef& image) { return at(image->luma(), 120, 113); };
  EXPECT_EQ(red(render.renderVideo(grey({}))), 76);    // 0.299 of 255
  EXPECT_EQ(red(render.renderVideo(grey(k709))), 54);  // 0.2126
  EXPECT_EQ(red(render.renderVideo(grey({}))), 76);
}

TEST_F(StitchingRenderTest, ALogoTakenAwayAsTheMatrixChangesIsGone) {
  render.setOffset(kFactoryOffset);
  render.setLogoImage(white());
  EXPECT_EQ(nadir(*render.renderVideo(grey({}))), 255);
  render.setLogoImage(std::nullopt);
  EXPECT_EQ(nadir(*render.renderVideo(grey(k709))), 90);
}

TEST_F(StitchingRenderTest, LeavesOutALogoThatMakesNoSense) {
  render.setOffset(kFactoryOffset);
  const auto without = rendered();
  render.setLogoImage(platform::RgbaImage{100, 100, std::vector<std::uint8_t>(12)});
  EXPECT_TRUE(isSame(*rendered(), *without));
  render.setLogoImage(white());
  render.setLogoAngle(std::numeric_limits<float>::quiet_NaN());
  EXPECT_TRUE(isSame(*rendered(), *without));
  EXPECT_THAT(faults, ElementsAre("logo: it is not shown, since its size, its bytes or its angle make no sense"));
  render.setLogoAngle(0);
  EXPECT_EQ(nadir(*rendered()), 255);
}

TEST_F(StitchingRenderTest, RemovesPurpleFromTheNextPictureOn) {
  render.setOffset(kFactoryOffset);
  const auto purple = MemoryPixelBuffer::filled(640, 320, 250, 160, 150);  // both above grey, beside something bright
  EXPECT_EQ(at(render.renderVideo(purple)->chroma(), 100, 30), 160);
  render.setRemovePurple(true);
  EXPECT_EQ(at(render.renderVideo(purple)->chroma(), 100, 30), 138);  // 22 less, which is what both have
  EXPECT_EQ(at(render.renderVideo(purple)->chroma(), 101, 30), 128);
  render.setRemovePurple(false);
  EXPECT_EQ(at(render.renderVideo(purple)->chroma(), 100, 30), 160);
}

TEST_F(StitchingRenderTest, PurpleIsSwitchedWhilePicturesAreRendered) {
  render.setOffset(kFactoryOffset);
  const auto purple = MemoryPixelBuffer::filled(640, 320, 250, 160, 150);
  std::atomic<bool> over = false;
  std::thread other([&] {
    for (int count = 0; !over; ++count) render.setRemovePurple(count % 2 == 0);
    render.setRemovePurple(true);
  });
  std::vector<int> seen;
  for (int count = 0; count < 100; ++count) seen.push_back(at(render.renderVideo(purple)->chroma(), 100, 30));
  over = true;
  other.join();
  EXPECT_THAT(seen, testing::Each(testing::AnyOf(138, 160)));
  EXPECT_EQ(at(render.renderVideo(purple)->chroma(), 100, 30), 138);
}

}  // namespace
}  // namespace zel::render
