// Streams of other makers' encoders, of limited range all of them, though only one declares it. The sums are those of
// FFmpeg's samples, whose own sums stand beside them, each sample stretched by the exact formula.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/ffmpeg/h264_decoder.h"
#include "tests/platform/ffmpeg/streams/decoded_stream.h"

namespace zel::platform {
namespace {

using test::DecodedStream;

DecodedStream decoded(const std::vector<std::uint8_t>& file, int threads = 1) {
  LibavVideoDecoders decoders({threads});
  return test::decodeAll(decoders, test::unitsOf(file));
}

TEST(RealStreamsTest, PicturesOfOneToTenSlices) {
  ZEL_REAL_MEDIA(file, "h264/CI1_FT_B.264");
  for (const int threads : {1, 3}) {
    const DecodedStream stream = decoded(file, threads);
    EXPECT_EQ(stream.pictures.size(), 291u);
    EXPECT_EQ(test::md5Of(stream.pictures), "dd913aefa25d6e596f224552f2e78a56");  // 68327629...
  }
}

TEST(RealStreamsTest, PicturesOfFourteenSlices) {
  ZEL_REAL_MEDIA(file, "h264/test_cif_P_CABAC_slice.264");
  const DecodedStream stream = decoded(file);
  EXPECT_EQ(stream.pictures.size(), 300u);
  EXPECT_EQ(test::md5Of(stream.pictures), "b858f4aaf7b2d66329457ed5150557b0");  // b2dd907c...
  EXPECT_EQ(stream.unitOfPicture[0], 14u);  // with the first unit of the next picture
  EXPECT_EQ(stream.pictures[1].timestamp, 14000);
}

TEST(RealStreamsTest, ALimitedRangeStreamOfACamera) {
  ZEL_REAL_MEDIA(file, "h264/kvs-frames-001-060.h264");
  const DecodedStream stream = decoded(file);
  EXPECT_EQ(stream.pictures.size(), 60u);
  EXPECT_EQ(stream.unitOfPicture[59], 59u);                                     // one slice a picture: at once
  EXPECT_EQ(test::md5Of(stream.pictures), "9be37204fc487bdc9f560c4a0c7738cb");  // 0c0ccd1d...
}

TEST(RealStreamsTest, SizesThatChangeAndSlicesThatAreMissing) {
  ZEL_REAL_MEDIA(file, "h264/Error_I_P.264");
  const DecodedStream stream = decoded(file);
  EXPECT_EQ(stream.sessions, 3);
  std::vector<int> widths;
  for (const DecodedPicture& picture : stream.pictures) widths.push_back(picture.pixelBuffer->width());
  EXPECT_THAT(widths, testing::ElementsAre(352, 352, 640, 640, 352, 352));
  // Each picture at its own size, as "ffmpeg -autoscale 0" gives them (97df879a...).
  EXPECT_EQ(test::md5Of(stream.pictures), "5b908f089ea14096f332c1d05e05485c");
}

TEST(RealStreamsTest, ADamagedCameraStreamNeverStopsTheDecoder) {
  ZEL_REAL_MEDIA(file, "h264/kvs-frames-001-060.h264");
  auto units = test::unitsOf(file);
  std::size_t number = 0;
  for (auto& unit : units) {
    if (test::typeOf(unit) == 1 && ++number % 3 == 0) unit[unit.size() / 2] ^= 0x10;
  }
  LibavVideoDecoders decoders;
  const DecodedStream stream = test::decodeAll(decoders, units);
  EXPECT_GE(stream.pictures.size(), 40u);
}

}  // namespace
}  // namespace zel::platform
