#include "platform/ffmpeg/picture_memory.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/ffmpeg/h264_decoder.h"
#include "tests/platform/ffmpeg/streams/decoded_stream.h"
#include "tests/platform/ffmpeg/streams/stream_maker.h"

namespace zel::platform {
namespace {

using test::lengthPrefixed;
using test::makeStream;

// 1280x720 takes 1,382,400 bytes, and FFmpeg's edges.
constexpr std::int64_t kPicture = 1'500'000;

class PictureMemoryTest : public testing::TestWithParam<int> {
 protected:
  // Decodes the stream and keeps every picture. Returns how many came.
  std::size_t decodeAndKeep(std::int64_t mostHeld) {
    const auto units = makeStream({.width = 1280, .height = 720, .pictures = 20, .range = 2});
    LibavVideoDecoders decoders({.threads = GetParam(), .mostHeld = mostHeld});
    const auto decoder = decoders.create(test::firstOf(units, 7), test::firstOf(units, 8)).decoder;
    for (const auto& slice : test::slicesOf(units)) keep(decoder->decode(lengthPrefixed(slice), 0).picture.pixelBuffer);
    while (keep(decoder->flush().pixelBuffer)) continue;
    return kept.size();
  }
  bool keep(const PixelBufferRef& picture) {
    if (picture) kept.push_back(picture);
    return picture != nullptr;
  }

  std::vector<PixelBufferRef> kept;
};

TEST_P(PictureMemoryTest, GivesEveryPictureWhereThereIsRoom) { EXPECT_EQ(decodeAndKeep(30 * kPicture), 20u); }

TEST_P(PictureMemoryTest, DecodesNoPictureBeyondWhatMayBeHeld) {
  const std::size_t pictures = decodeAndKeep(8 * kPicture);
  EXPECT_GT(pictures, 0u);
  EXPECT_LE(pictures, 8u);
}

INSTANTIATE_TEST_SUITE_P(Threads, PictureMemoryTest, testing::Values(1, 3));

TEST(PictureMemoryCountTest, CountsAPictureUntilItsLastHolderLetsItGo) {
  PictureMemory memory(kPicture);
  const AVCodec* const codec = avcodec_find_decoder(AV_CODEC_ID_H264);
  const CodecContextPtr context(avcodec_alloc_context3(codec));
  context->width = 1280;
  context->height = 720;
  context->pix_fmt = AV_PIX_FMT_YUV420P;
  memory.serve(*context);
  ASSERT_EQ(avcodec_open2(context.get(), codec, nullptr), 0);
  const auto taken = [&] {
    FramePtr frame(av_frame_alloc());
    frame->width = 1280;
    frame->height = 720;
    frame->format = AV_PIX_FMT_YUV420P;
    return context->get_buffer2(context.get(), frame.get(), 0) == 0 ? std::move(frame) : nullptr;
  };
  FramePtr first = taken();
  ASSERT_NE(first, nullptr);
  EXPECT_GE(memory.held(), 1280 * 720 * 3 / 2);
  EXPECT_EQ(taken(), nullptr);
  FramePtr second(av_frame_clone(first.get()));
  first.reset();
  EXPECT_EQ(taken(), nullptr);
  second.reset();
  EXPECT_EQ(memory.held(), 0);
  EXPECT_NE(taken(), nullptr);
}

}  // namespace
}  // namespace zel::platform
