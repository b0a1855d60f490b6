#include "platform/ffmpeg/picture_conversion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace zel::platform {
namespace {

using testing::ElementsAre;

FramePtr plainFrame(AVPixelFormat format, int width, int height, AVColorRange range) {
  FramePtr frame(av_frame_alloc());
  frame->format = format;
  frame->width = width;
  frame->height = height;
  frame->color_range = range;
  av_frame_get_buffer(frame.get(), 0);
  return frame;
}

// 3 x 3 pixels with an own value for each sample: luma 100 to 108, Cb 10 to 13, Cr 20 to 23.
FramePtr numberedFrame(AVColorRange range) {
  FramePtr frame = plainFrame(AV_PIX_FMT_YUV420P, 3, 3, range);
  for (int i = 0; i < 9; ++i) frame->data[0][i / 3 * frame->linesize[0] + i % 3] = static_cast<std::uint8_t>(100 + i);
  for (int i = 0; i < 4; ++i) {
    frame->data[1][i / 2 * frame->linesize[1] + i % 2] = static_cast<std::uint8_t>(10 + i);
    frame->data[2][i / 2 * frame->linesize[2] + i % 2] = static_cast<std::uint8_t>(20 + i);
  }
  return frame;
}

std::vector<int> rowOf(const PixelPlane& plane, std::size_t row) {
  const std::uint8_t* from = plane.data + row * plane.stride;
  return {from, from + plane.rowBytes};
}

TEST(FullRangeTest, MapsTheEndsAndTheMiddle) {
  EXPECT_EQ(fullRangeLuma(0), 0);
  EXPECT_EQ(fullRangeLuma(16), 0);
  EXPECT_EQ(fullRangeLuma(17), 1);     // 1.16
  EXPECT_EQ(fullRangeLuma(126), 128);  // 128.08
  EXPECT_EQ(fullRangeLuma(235), 255);
  EXPECT_EQ(fullRangeLuma(255), 255);
  EXPECT_EQ(fullRangeChroma(0), 0);
  EXPECT_EQ(fullRangeChroma(16), 0);  // 128 - 127.5
  EXPECT_EQ(fullRangeChroma(128), 128);
  EXPECT_EQ(fullRangeChroma(129), 129);  // 1.14
  EXPECT_EQ(fullRangeChroma(240), 255);
}

TEST(FullRangeTest, IsTheNearestForEverySample) {
  for (int sample = 0; sample < 256; ++sample) {
    const double luma = std::clamp((sample - 16) * 255.0 / 219, 0.0, 255.0);
    const double chroma = std::clamp((sample - 128) * 255.0 / 224 + 128, 0.0, 255.0);
    EXPECT_LE(std::abs(fullRangeLuma(static_cast<std::uint8_t>(sample)) - luma), 0.5) << sample;
    EXPECT_LE(std::abs(fullRangeChroma(static_cast<std::uint8_t>(sample)) - chroma), 0.5) << sample;
  }
}

TEST(PictureConversionTest, InterleavesChromaAndKeepsEverySample) {
  FramePtr byFormat = numberedFrame(AVCOL_RANGE_UNSPECIFIED);
  byFormat->format = AV_PIX_FMT_YUVJ420P;
  for (const PixelBufferRef& pixels : {pixelsOf(numberedFrame(AVCOL_RANGE_JPEG)), pixelsOf(std::move(byFormat))}) {
    ASSERT_NE(pixels, nullptr);
    EXPECT_EQ(pixels->width(), 3);
    EXPECT_EQ(pixels->height(), 3);
    EXPECT_THAT(rowOf(pixels->luma(), 0), ElementsAre(100, 101, 102));
    EXPECT_THAT(rowOf(pixels->luma(), 2), ElementsAre(106, 107, 108));
    EXPECT_EQ(pixels->luma().rows, 3u);
    EXPECT_THAT(rowOf(pixels->chroma(), 0), ElementsAre(10, 20, 11, 21));
    EXPECT_THAT(rowOf(pixels->chroma(), 1), ElementsAre(12, 22, 13, 23));
    EXPECT_EQ(pixels->chroma().rows, 2u);
  }
}

TEST(PictureConversionTest, StretchesLimitedRangeToldOrNot) {
  for (const AVColorRange range : {AVCOL_RANGE_MPEG, AVCOL_RANGE_UNSPECIFIED}) {
    const PixelBufferRef pixels = pixelsOf(numberedFrame(range));
    ASSERT_NE(pixels, nullptr);
    EXPECT_THAT(rowOf(pixels->luma(), 0), ElementsAre(98, 99, 100));    // 97.81 98.97 100.14
    EXPECT_THAT(rowOf(pixels->luma(), 2), ElementsAre(105, 106, 107));  // 104.79 105.96 107.12
    EXPECT_THAT(rowOf(pixels->chroma(), 1), ElementsAre(0, 7, 0, 8));   // 22: 7.33, 23: 8.47
  }
}

TEST(PictureConversionTest, KeepsTheColoursOfEitherRange) {
  for (const AVColorRange range : {AVCOL_RANGE_MPEG, AVCOL_RANGE_JPEG}) {
    FramePtr frame = numberedFrame(range);
    EXPECT_EQ(pixelsOf(std::move(frame))->colour(), PictureColour());
    frame = numberedFrame(range);
    frame->colorspace = AVCOL_SPC_BT709;
    frame->color_primaries = AVCOL_PRI_BT709;
    frame->color_trc = AVCOL_TRC_IEC61966_2_1;
    EXPECT_EQ(pixelsOf(std::move(frame))->colour(), (PictureColour{ColourMatrix::bt709, 1, 13}));
  }
}

TEST(PictureConversionTest, UsesTheDecodersLuma) {
  FramePtr frame = numberedFrame(AVCOL_RANGE_JPEG);
  const std::uint8_t* luma = frame->data[0];
  EXPECT_EQ(pixelsOf(std::move(frame))->luma().data, luma);
}

TEST(PictureConversionTest, TakesNoOtherFormat) {
  for (const AVPixelFormat format : {AV_PIX_FMT_YUV422P, AV_PIX_FMT_YUV444P, AV_PIX_FMT_YUV420P10LE, AV_PIX_FMT_GRAY8})
    EXPECT_EQ(pixelsOf(plainFrame(format, 16, 16, AVCOL_RANGE_JPEG)), nullptr) << format;
}

}  // namespace
}  // namespace zel::platform
