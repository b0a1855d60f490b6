#include "platform/render/stitcher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "simulator/fisheye.h"
#include "simulator/scene.h"
#include "tests/platform/render/pictures.h"

namespace zel::render {
namespace {

using platform::MemoryPixelBuffer;
using testing::Each;
using testing::HasSubstr;

constexpr PictureSize kSource{640, 320}, kOutput{480, 240};
constexpr double kSceneTime = 1.25;
// Weighted; a little below what comes out.
constexpr double kLumaFloor = 29.4, kChromaFloor = 41.3;

simulator::Picture worldOf(int width) { return simulator::Scene(width, width / 2).at(kSceneTime); }

// A quarter of the width and height, each pixel the mean of sixteen.
simulator::Picture quartered(const simulator::Picture& world) {
  simulator::Picture small = simulator::blackPicture(world.width / 4, world.height / 4);
  for (int y = 0; y < small.height; ++y) {
    for (int i = 0; i < 3 * small.width; ++i) {
      double sum = 0;
      for (int part = 0; part < 16; ++part)
        sum += world.rgb[simulator::indexOf(world, 4 * (i / 3) + part % 4, 4 * y + part / 4) +
                         static_cast<std::size_t>(i % 3)];
      small.rgb[simulator::indexOf(small, 0, y) + static_cast<std::size_t>(i)] = byteOf(sum / 16);
    }
  }
  return small;
}

PicturePtr fisheyeOf(const simulator::Picture& world) {
  return nv12Of(simulator::FisheyeProjector(simulator::factoryLensOffset(), kSource.width, kSource.height, world.width,
                                            world.height)
                    .project(world));
}

const platform::PixelBuffer& fisheye() {
  static const PicturePtr picture = fisheyeOf(worldOf(1920));
  return *picture;
}

// Multiplies what the second lens shows.
PicturePtr dimmed(const platform::PixelBuffer& picture, double factor) {
  const auto result = MemoryPixelBuffer::create(picture.width(), picture.height());
  const auto width = static_cast<std::size_t>(picture.width()), height = static_cast<std::size_t>(picture.height());
  for (std::size_t y = 0; y < height; ++y) {
    for (std::size_t x = 0; x < width; ++x) {
      const double by = x < width / 2 ? 1 : factor;
      result->lumaRow(y)[x] = byteOf(at(picture.luma(), x, y) * by);
      if (y % 2 == 0) result->chromaRow(y / 2)[x] = byteOf((at(picture.chroma(), x, y / 2) - 128) * by + 128);
    }
  }
  return result;
}

std::unique_ptr<Stitcher> stitcherOf(PictureSize output = kOutput, const StitcherOptions& options = {.threads = 2},
                                     const std::string& offset = kFactoryOffset) {
  auto creation = Stitcher::create(offset, output, options);
  EXPECT_TRUE(creation.stitcher) << creation.fault;
  return std::move(creation.stitcher);
}

PicturePtr stitched(Stitcher& stitcher, const platform::PixelBuffer& source) {
  const auto picture = MemoryPixelBuffer::create(stitcher.size().width, stitcher.size().height);
  EXPECT_TRUE(stitcher.stitch(source, outputOf(*picture)));
  return picture;
}

std::vector<int> values(const platform::PixelPlane& plane) {
  std::vector<int> result;
  for (std::size_t row = 0; row < plane.rows; ++row) {
    for (std::size_t column = 0; column < plane.rowBytes; ++column) result.push_back(at(plane, column, row));
  }
  return result;
}

LogoImage logo() {
  LogoImage image{16, 16, {}};
  for (int i = 0; i < 256; ++i) image.rgba.insert(image.rgba.end(), {255, 255, 255, 255});
  return image;
}

TEST(StitcherTest, ShowsTheWorldAsItIs) {
  const auto stitcher = stitcherOf();
  const auto picture = stitched(*stitcher, fisheye());
  const auto truth = nv12Of(quartered(worldOf(1920)));
  EXPECT_GT(psnr(picture->luma(), truth->luma(), true), kLumaFloor);
  EXPECT_GT(psnr(picture->chroma(), truth->chroma(), true), kChromaFloor);
}

TEST(StitcherTest, ShowsAPlainWorldWithoutALevelWrong) {
  const auto stitcher = stitcherOf(kOutput, {.threads = 1});
  const auto picture = stitched(*stitcher, *MemoryPixelBuffer::filled(640, 320, 77, 90, 200));
  EXPECT_THAT(values(picture->luma()), Each(77));
  const auto chroma = values(picture->chroma());
  for (std::size_t i = 0; i < chroma.size(); ++i) ASSERT_EQ(chroma[i], i % 2 == 0 ? 90 : 200) << i;
}

TEST(StitcherTest, RemovesADifferenceOfTenPercentBetweenTheLenses) {
  const auto plain = dimmed(*MemoryPixelBuffer::filled(640, 320, 150, 100, 150), 0.9);
  const auto stitcher = stitcherOf();
  const auto picture = stitched(*stitcher, *plain);
  // 150 and 135 meet at 142.3.
  EXPECT_THAT(values(picture->luma()), Each(testing::AllOf(testing::Ge(142), testing::Le(143))));
}

TEST(StitcherTest, LeavesTheDifferenceIfAskedTo) {
  const auto plain = dimmed(*MemoryPixelBuffer::filled(640, 320, 150, 128, 128), 0.9);
  const auto stitcher = stitcherOf(kOutput, {.threads = 2, .matchGain = false});
  const auto picture = stitched(*stitcher, *plain);
  EXPECT_EQ(at(picture->luma(), 240, 120), 150);         // forward
  EXPECT_EQ(at(picture->luma(), 0, 120), 135);           // backward
  EXPECT_NEAR(at(picture->luma(), 360, 120), 142.5, 2);  // the seam, on the right
}

TEST(StitcherTest, MatchesTheLensesOfAWorldFullOfThings) {
  const auto stitcher = stitcherOf(), plainStitcher = stitcherOf(kOutput, {.threads = 2, .matchGain = false});
  const auto truth = nv12Of(worldOf(kOutput.width));
  const auto dim = dimmed(fisheye(), 0.9);
  const auto matched = stitched(*stitcher, *dim), unmatched = stitched(*plainStitcher, *dim);
  // The step from just before the seam on the right to just behind it, in the sky.
  const auto step = [&](const MemoryPixelBuffer& picture) {
    double before = 0, behind = 0;
    for (std::size_t row = 40; row < 80; ++row) {
      for (std::size_t column = 0; column < 4; ++column) {
        before += at(picture.luma(), 348 + column, row) / 160.0;
        behind += at(picture.luma(), 368 + column, row) / 160.0;
      }
    }
    return before - behind;
  };
  const double real = step(*truth);
  EXPECT_GT(std::abs(step(*unmatched) - real), 5);
  EXPECT_LT(std::abs(step(*matched) - real), 1);
}

TEST(StitcherTest, GivesTheSameBytesWithAnyNumberOfThreads) {
  const auto pictureWith = [](int threads) {
    const auto stitcher = stitcherOf({482, 242}, {.threads = threads});
    stitcher->setRemovePurple(true);
    EXPECT_TRUE(stitcher->setLogo(logo(), 30));
    return stitched(*stitcher, fisheye());
  };
  const auto one = pictureWith(1);
  for (const int threads : {2, 3, 7}) {
    const auto several = pictureWith(threads);
    EXPECT_EQ(values(several->luma()), values(one->luma())) << threads;
    EXPECT_EQ(values(several->chroma()), values(one->chroma())) << threads;
  }
}

// The same pixels with longer rows.
class WidePicture final : public platform::PixelBuffer {
 public:
  WidePicture(const platform::PixelBuffer& picture, std::size_t lumaStride, std::size_t chromaStride)
      : width_(picture.width()),
        height_(picture.height()),
        luma_(copy(picture.luma(), lumaStride, lumaBytes_)),
        chroma_(copy(picture.chroma(), chromaStride, chromaBytes_)) {}

  std::int32_t width() const override { return width_; }
  std::int32_t height() const override { return height_; }
  platform::PixelPlane luma() const override { return luma_; }
  platform::PixelPlane chroma() const override { return chroma_; }

  std::int32_t width_, height_;
  std::vector<std::uint8_t> lumaBytes_, chromaBytes_;
  platform::PixelPlane luma_, chroma_;

 private:
  static platform::PixelPlane copy(const platform::PixelPlane& from, std::size_t stride,
                                   std::vector<std::uint8_t>& into) {
    into.assign(stride * from.rows, 255);
    for (std::size_t row = 0; row < from.rows; ++row)
      std::copy_n(from.data + row * from.stride, from.rowBytes, into.data() + row * stride);
    return {into.data(), stride, from.rowBytes, from.rows};
  }
};

TEST(StitcherTest, ReadsRowsOfAnyLength) {
  const auto stitcher = stitcherOf(), other = stitcherOf();
  const auto wide = stitched(*other, WidePicture(fisheye(), 1111, 777));
  const auto plain = stitched(*stitcher, fisheye());
  EXPECT_EQ(values(wide->luma()), values(plain->luma()));
  EXPECT_EQ(values(wide->chroma()), values(plain->chroma()));
}

TEST(StitcherTest, WritesNothingBetweenTheRows) {
  const auto stitcher = stitcherOf({130, 66});
  std::vector<std::uint8_t> luma(140 * 66, 9), chroma(150 * 33, 9);
  const auto grey = MemoryPixelBuffer::filled(640, 320, 77, 78, 79);
  ASSERT_TRUE(stitcher->stitch(*grey, {luma.data(), 140, chroma.data(), 150}));
  for (std::size_t i = 0; i < luma.size(); ++i) ASSERT_EQ(luma[i], i % 140 < 130 ? 77 : 9) << i;
  for (std::size_t i = 0; i < chroma.size(); ++i) ASSERT_EQ(chroma[i], i % 150 >= 130 ? 9 : i % 2 == 0 ? 78 : 79) << i;
}

TEST(StitcherTest, MakesPicturesOfAnyEvenSize) {
  const auto grey = MemoryPixelBuffer::filled(640, 320, 77, 90, 200);
  for (const PictureSize size : {PictureSize{2, 2}, {4, 2}, {2, 200}, {34, 6}, {1000, 2}, {100, 100}}) {
    const auto picture = stitched(*stitcherOf(size), *grey);
    EXPECT_THAT(values(picture->luma()), Each(77)) << size.width << " x " << size.height;
  }
}

TEST(StitcherTest, TakesPicturesOfOddAndTinySizes) {
  for (const auto& [width, height] : {std::pair{641, 321}, {4, 4}, {5, 900}}) {
    const auto picture = stitched(*stitcherOf(), *MemoryPixelBuffer::filled(width, height, 77, 90, 200));
    EXPECT_THAT(values(picture->luma()), Each(77)) << width << " x " << height;
  }
}

TEST(StitcherTest, FollowsASourceThatChangesItsSize) {
  const auto stitcher = stitcherOf();
  const auto before = stitched(*stitcher, fisheye());
  stitched(*stitcher, *MemoryPixelBuffer::filled(320, 160, 77, 128, 128));
  const auto fresh = stitched(*stitcherOf(), fisheye());
  const auto after = stitched(*stitcher, fisheye());
  EXPECT_EQ(values(after->luma()), values(fresh->luma()));
}

TEST(StitcherTest, IsBlackWhereNoLensLooks) {
  const auto stitcher = stitcherOf(kOutput, {.threads = 2}, "1_150_160_160_0_0_0_640_320_7");
  const auto picture = stitched(*stitcher, *MemoryPixelBuffer::filled(640, 320, 77, 90, 200));
  EXPECT_EQ(at(picture->luma(), 240, 120), 77);
  EXPECT_EQ(at(picture->luma(), 0, 120), 0);
  EXPECT_EQ(at(picture->chroma(), 240, 60), 90);
  EXPECT_EQ(at(picture->chroma(), 0, 60), 128);
  EXPECT_EQ(at(picture->chroma(), 1, 60), 128);
}

TEST(StitcherTest, ShowsTheLogoUntilItIsTaken) {
  const auto stitcher = stitcherOf();
  const auto grey = MemoryPixelBuffer::filled(640, 320, 77, 128, 128);
  ASSERT_TRUE(stitcher->setLogo(logo(), 45));
  const auto picture = stitched(*stitcher, *grey);
  EXPECT_EQ(at(picture->luma(), 100, 239), 255);
  EXPECT_EQ(at(picture->luma(), 100, 180), 77);
  stitcher->clearLogo();
  EXPECT_EQ(at(stitched(*stitcher, *grey)->luma(), 100, 239), 77);
}

TEST(StitcherTest, RefusesLogosThatAreNone) {
  const auto stitcher = stitcherOf();
  EXPECT_FALSE(stitcher->setLogo({}, 0));
  EXPECT_FALSE(stitcher->setLogo({4, 4, {1, 2, 3}}, 0));
  EXPECT_FALSE(stitcher->setLogo(logo(), std::numeric_limits<double>::quiet_NaN()));
  EXPECT_FALSE(stitcher->setLogo(logo(), std::numeric_limits<double>::infinity()));
}

TEST(StitcherTest, RemovesPurpleWhileItIsAskedTo) {
  const auto stitcher = stitcherOf();
  const auto purple = MemoryPixelBuffer::filled(640, 320, 250, 160, 150);
  EXPECT_EQ(at(stitched(*stitcher, *purple)->chroma(), 100, 60), 160);
  stitcher->setRemovePurple(true);
  EXPECT_EQ(at(stitched(*stitcher, *purple)->chroma(), 100, 60), 138);
  stitcher->setRemovePurple(false);
  EXPECT_EQ(at(stitched(*stitcher, *purple)->chroma(), 100, 60), 160);
}

TEST(StitcherTest, SaysWhatIsWrongWithTheOffset) {
  const auto creation = Stitcher::create("0_(null)_0_0_0", kOutput);
  EXPECT_FALSE(creation.stitcher);
  EXPECT_EQ(creation.fault, "lens offset: the number of lenses makes no sense");
}

TEST(StitcherTest, RefusesAbsurdSizes) {
  for (const PictureSize size : {PictureSize{0, 0}, {-2, 2}, {3, 2}, {480, 241}, {16386, 2}, {2, 2147483646}}) {
    const auto creation = Stitcher::create(kFactoryOffset, size);
    EXPECT_FALSE(creation.stitcher);
    EXPECT_THAT(creation.fault, HasSubstr("must be even, from 2 to 16384"));
  }
  EXPECT_FALSE(stitcherOf()->prepare({3, 320}));
  EXPECT_FALSE(stitcherOf()->prepare({640, 16385}));
  EXPECT_FALSE(stitcherOf()->prepare({-640, -320}));
}

TEST(StitcherTest, RefusesSourcesThatLackPixels) {
  const auto stitcher = stitcherOf();
  const auto out = MemoryPixelBuffer::filled(480, 240, 5, 5, 5);
  const auto refuses = [&](auto&& spoil) {
    WidePicture picture(fisheye(), 640, 640);
    spoil(picture);
    return !stitcher->stitch(picture, outputOf(*out));
  };
  EXPECT_TRUE(refuses([](WidePicture& picture) { picture.luma_.data = nullptr; }));
  EXPECT_TRUE(refuses([](WidePicture& picture) { picture.chroma_.data = nullptr; }));
  EXPECT_TRUE(refuses([](WidePicture& picture) { picture.luma_.rows = 319; }));
  EXPECT_TRUE(refuses([](WidePicture& picture) { picture.luma_.rowBytes = 639; }));
  EXPECT_TRUE(refuses([](WidePicture& picture) { picture.luma_.stride = 639; }));
  EXPECT_TRUE(refuses([](WidePicture& picture) { picture.luma_.stride = std::size_t{1} << 40; }));
  EXPECT_TRUE(refuses([](WidePicture& picture) { picture.chroma_.rows = 159; }));
  EXPECT_TRUE(refuses([](WidePicture& picture) { picture.chroma_.rowBytes = 638; }));
  EXPECT_TRUE(refuses([](WidePicture& picture) { picture.width_ = 3; }));
  EXPECT_TRUE(refuses([](WidePicture& picture) { picture.height_ = -320; }));
  EXPECT_THAT(values(out->luma()), Each(5));
}

TEST(StitcherTest, RefusesOutputsThatAreTooSmall) {
  const auto stitcher = stitcherOf();
  const auto out = MemoryPixelBuffer::create(480, 240);
  OutputPicture narrow = outputOf(*out), none = outputOf(*out);
  narrow.chromaStride = 479;
  none.luma = nullptr;
  EXPECT_FALSE(stitcher->stitch(fisheye(), narrow));
  EXPECT_FALSE(stitcher->stitch(fisheye(), none));
}

}  // namespace
}  // namespace zel::render
