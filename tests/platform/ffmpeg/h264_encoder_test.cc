#include "platform/ffmpeg/h264_encoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

#include "platform/ffmpeg/h264_decoder.h"
#include "platform/ffmpeg/libav.h"
#include "platform/h264/h264_headers.h"
#include "tests/platform/ffmpeg/annex_b.h"

namespace zel::platform {
namespace {

using test::Unit;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr VideoEncoderSettings kSmall{.width = 320, .height = 160, .bitrate = 2'000'000, .fps = 10};

// A soft slope with a bright block that moves, in the full range of values.
std::shared_ptr<MemoryPixelBuffer> scene(int number, int width = 320, int height = 160) {
  const auto picture = MemoryPixelBuffer::create(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const bool inBlock = std::abs(x - 20 - 6 * number) < 16 && std::abs(y - height / 2) < 24;
      picture->lumaRow(static_cast<std::size_t>(y))[static_cast<std::size_t>(x)] =
          static_cast<std::uint8_t>(inBlock ? 255 : x * 240 / width);
    }
  }
  for (int y = 0; y < height / 2; ++y) {
    const auto row = picture->chromaRow(static_cast<std::size_t>(y));
    for (std::size_t i = 0; i < row.size(); ++i)
      row[i] = static_cast<std::uint8_t>(i % 2 == 0 ? 60 + 2 * y * 120 / height : 180);
  }
  return picture;
}

double meanSquare(const PixelPlane& a, const PixelPlane& b) {
  double sum = 0;
  for (std::size_t row = 0; row < a.rows; ++row) {
    for (std::size_t column = 0; column < a.rowBytes; ++column) {
      const double difference = a.data[row * a.stride + column] - b.data[row * b.stride + column];
      sum += difference * difference;
    }
  }
  return sum / static_cast<double>(a.rows * a.rowBytes);
}

double psnr(const PixelPlane& a, const PixelPlane& b) { return 10 * std::log10(255 * 255 / meanSquare(a, b)); }

struct Encoded {
  std::vector<std::uint8_t> bytes;  // with the length
  bool key = false;
  MediaTime time;

  Unit unit() const { return {bytes.begin() + 4, bytes.end()}; }
};

// An encoder that keeps what it makes.
struct Recorder {
  explicit Recorder(const VideoEncoderSettings& settings, LibavEncoderOptions options = {})
      : encoder(LibavVideoEncoders(options).create(settings)) {
    isOpen = encoder->open();
    encoder->setSpsPpsCallback(
        [this](const std::uint8_t* s, std::int32_t sSize, const std::uint8_t* p, std::int32_t pSize) {
          ++parameterSets;
          unitsBeforeParameterSets = units.size();
          sps.assign(s, s + sSize);
          pps.assign(p, p + pSize);
        });
    encoder->setNaluCallback([this](std::uint8_t* data, std::int32_t size, bool key, MediaTime time) {
      units.push_back({{data, data + size}, key, time});
      std::fill(data, data + size, std::uint8_t{0});  // the receiver may change the bytes
    });
  }

  void encode(int pictures) {
    for (int number = 0; number < pictures; ++number)
      ASSERT_TRUE(encoder->encodeImage(scene(number), {100 * number, 1000})) << number;
  }

  std::unique_ptr<VideoEncoder> encoder;
  bool isOpen = false;
  int parameterSets = 0;
  std::size_t unitsBeforeParameterSets = 0;
  Unit sps, pps;
  std::vector<Encoded> units;
};

std::vector<PixelBufferRef> decoded(const Recorder& recorder) {
  LibavVideoDecoders decoders;
  const auto decoder = decoders.create(recorder.sps, recorder.pps).decoder;
  std::vector<PixelBufferRef> pictures;
  if (!decoder) return pictures;
  for (const Encoded& unit : recorder.units) {
    const DecodeResult result = decoder->decode(unit.bytes, unit.time.value);
    if (result.status == DecodeStatus::picture) pictures.push_back(result.picture.pixelBuffer);
  }
  return pictures;
}

TEST(H264EncoderTest, MakesWhatTheDecoderShowsAgain) {
  Recorder recorder(kSmall);
  ASSERT_TRUE(recorder.isOpen);
  recorder.encode(25);
  const auto pictures = decoded(recorder);
  ASSERT_THAT(pictures, SizeIs(25));
  for (int number = 0; number < 25; ++number) {
    const auto original = scene(number);
    const auto& shown = pictures[static_cast<std::size_t>(number)];
    ASSERT_EQ(shown->width(), 320);
    ASSERT_EQ(shown->height(), 160);
    EXPECT_GT(psnr(shown->luma(), original->luma()), 36) << number;
    EXPECT_GT(psnr(shown->chroma(), original->chroma()), 38) << number;
  }
}

TEST(H264EncoderTest, GivesOneSliceAPictureInTheCallThatTakesIt) {
  Recorder recorder(kSmall);
  for (int number = 0; number < 5; ++number) {
    ASSERT_TRUE(recorder.encoder->encodeImage(scene(number), {number, 1000}));
    ASSERT_THAT(recorder.units, SizeIs(static_cast<std::size_t>(number) + 1));
    const Encoded& last = recorder.units.back();
    std::size_t length = 0;
    for (std::size_t i = 0; i < 4; ++i) length = 256 * length + last.bytes[i];
    EXPECT_EQ(length, last.bytes.size() - 4);
    const auto slice = parseH264SliceStart(last.unit());
    ASSERT_TRUE(slice);
    EXPECT_TRUE(slice->beginsPicture);
    EXPECT_FALSE(slice->bidirectional);
    // Nothing else stands in the unit: no start code, which would begin another one.
    const std::uint8_t code[] = {0, 0, 1};
    EXPECT_EQ(std::search(last.bytes.begin() + 4, last.bytes.end(), std::begin(code), std::end(code)),
              last.bytes.end());
  }
}

TEST(H264EncoderTest, KeepsTheTimes) {
  Recorder recorder(kSmall);
  const std::vector<MediaTime> times = {{0, 1000}, {33, 1000}, {67, 1000}, {9'000'000'000, 90000}, {5, 1}, {5, 1}};
  for (std::size_t i = 0; i < times.size(); ++i)
    ASSERT_TRUE(recorder.encoder->encodeImage(scene(static_cast<int>(i)), times[i]));
  ASSERT_THAT(recorder.units, SizeIs(6));
  for (std::size_t i = 0; i < times.size(); ++i) EXPECT_EQ(recorder.units[i].time, times[i]) << i;
}

TEST(H264EncoderTest, BeginsEverySecondWithAKeyPicture) {
  Recorder recorder(kSmall);
  recorder.encode(25);  // at 10 a second
  for (std::size_t i = 0; i < recorder.units.size(); ++i) {
    EXPECT_EQ(recorder.units[i].key, i % 10 == 0) << i;
    EXPECT_EQ(recorder.units[i].bytes[4] & 0x1F, i % 10 == 0 ? 5 : 1) << i;
  }
}

TEST(H264EncoderTest, AnotherSceneBringsNoKeyPictureOfItsOwn) {
  for (const char* preset : {"ultrafast", "medium"}) {
    Recorder recorder(kSmall, {.preset = preset});
    for (int number = 0; number < 6; ++number) {
      const auto picture = number < 3 ? scene(number) : MemoryPixelBuffer::filled(320, 160, 200, 30, 90);
      ASSERT_TRUE(recorder.encoder->encodeImage(picture, {number, 1000}));
    }
    std::vector<bool> keys;
    for (const Encoded& unit : recorder.units) keys.push_back(unit.key);
    EXPECT_THAT(keys, ElementsAre(true, false, false, false, false, false));
  }
}

TEST(H264EncoderTest, GivesTheParameterSetsOnceBeforeTheFirstUnit) {
  Recorder recorder(kSmall);
  EXPECT_EQ(recorder.parameterSets, 0);
  recorder.encode(12);
  EXPECT_EQ(recorder.parameterSets, 1);
  EXPECT_EQ(recorder.unitsBeforeParameterSets, 0u);
  ASSERT_FALSE(recorder.sps.empty());
  ASSERT_FALSE(recorder.pps.empty());
  EXPECT_EQ(recorder.sps[0], 0x67);
  EXPECT_EQ(recorder.pps[0], 0x68);
  const auto sequence = parseH264Sequence(recorder.sps);
  ASSERT_TRUE(sequence);
  EXPECT_EQ(sequence->widthInMacroblocks, 20);
  EXPECT_EQ(sequence->heightInMacroblocks, 10);
  EXPECT_TRUE(sequence->reordersNever);
}

// The first picture as FFmpeg itself sees it.
FramePtr firstFrame(const Recorder& recorder) {
  const CodecContextPtr context(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_H264)));
  silence(*context);
  if (avcodec_open2(context.get(), nullptr, nullptr) < 0) return nullptr;
  Unit stream;
  for (const Unit& unit : {recorder.sps, recorder.pps, recorder.units.at(0).unit()}) {
    stream.insert(stream.end(), {0, 0, 0, 1});
    stream.insert(stream.end(), unit.begin(), unit.end());
  }
  const PacketPtr packet(av_packet_alloc());
  if (av_new_packet(packet.get(), static_cast<int>(stream.size())) < 0) return nullptr;
  std::copy(stream.begin(), stream.end(), packet->data);
  avcodec_send_packet(context.get(), packet.get());
  avcodec_send_packet(context.get(), nullptr);
  FramePtr frame(av_frame_alloc());
  return avcodec_receive_frame(context.get(), frame.get()) == 0 ? std::move(frame) : nullptr;
}

std::shared_ptr<MemoryPixelBuffer> filled(const PictureColour& colour, int luma, int cb, int cr) {
  auto picture = MemoryPixelBuffer::filled(320, 160, static_cast<std::uint8_t>(luma), static_cast<std::uint8_t>(cb),
                                           static_cast<std::uint8_t>(cr));
  picture->setColour(colour);
  return picture;
}

TEST(H264EncoderTest, DeclaresFullRangeAndAllOfItsColours) {
  Recorder recorder(kSmall);
  ASSERT_TRUE(recorder.encoder->encodeImage(filled({}, 16, 128, 240), {}));
  const FramePtr frame = firstFrame(recorder);
  ASSERT_NE(frame, nullptr);
  EXPECT_EQ(frame->color_range, AVCOL_RANGE_JPEG);
  EXPECT_EQ(frame->colorspace, AVCOL_SPC_SMPTE170M);
  EXPECT_EQ(frame->color_primaries, AVCOL_PRI_SMPTE170M);
  EXPECT_EQ(frame->color_trc, AVCOL_TRC_SMPTE170M);
  EXPECT_NEAR(frame->data[0][0], 16, 1);
  EXPECT_NEAR(frame->data[1][0], 128, 1);
  EXPECT_NEAR(frame->data[2][0], 240, 1);
}

TEST(H264EncoderTest, DeclaresTheColoursOfItsFirstPicture) {
  const PictureColour sRgb{ColourMatrix::bt709, 1, 13};
  for (const auto& [colour, expected] :
       {std::pair(sRgb, H264Colour{true, 1, 13, 1}),
        std::pair(PictureColour{ColourMatrix::bt709}, H264Colour{true, 1, 1, 1}),
        std::pair(PictureColour{ColourMatrix::bt2020, 9, 16}, H264Colour{true, 9, 16, 9}),
        std::pair(PictureColour{ColourMatrix::bt601, 1, 2}, H264Colour{true, 1, 6, 6})}) {
    Recorder recorder(kSmall);
    for (int number = 0; number < 3; ++number)
      ASSERT_TRUE(recorder.encoder->encodeImage(filled(colour, 100, 90, 200), {number, 10}));
    EXPECT_EQ(recorder.parameterSets, 1);
    EXPECT_THAT(recorder.units, SizeIs(3));
    ASSERT_TRUE(parseH264Sequence(recorder.sps));
    EXPECT_EQ(parseH264Sequence(recorder.sps)->colour, expected);
    const auto pictures = decoded(recorder);
    ASSERT_THAT(pictures, SizeIs(3));
    EXPECT_EQ(pictures[2]->colour().matrix, colour.matrix);
    EXPECT_NEAR(pictures[2]->luma().data[0], 100, 1);
    EXPECT_NEAR(pictures[2]->chroma().data[0], 90, 1);
    EXPECT_NEAR(pictures[2]->chroma().data[1], 200, 1);
  }
}

// A stream's parameter sets go out once: it cannot change its matrix.
TEST(H264EncoderTest, ConvertsALaterPictureToTheFirstOnesMatrix) {
  Recorder recorder(kSmall);
  ASSERT_TRUE(recorder.encoder->encodeImage(filled({ColourMatrix::bt601}, 0, 128, 128), {0, 10}));
  // The yellow of the 75 % bars by either matrix.
  ASSERT_TRUE(recorder.encoder->encodeImage(filled({ColourMatrix::bt709}, 177, 33, 137), {1, 10}));
  ASSERT_TRUE(recorder.encoder->encodeImage(filled({ColourMatrix::bt601}, 169, 33, 144), {2, 10}));
  EXPECT_EQ(recorder.parameterSets, 1);
  const auto pictures = decoded(recorder);
  ASSERT_THAT(pictures, SizeIs(3));
  for (const std::size_t number : {1u, 2u}) {
    EXPECT_EQ(pictures[number]->colour().matrix, ColourMatrix::bt601);
    EXPECT_NEAR(pictures[number]->luma().data[0], 169, 1) << number;
    EXPECT_NEAR(pictures[number]->chroma().data[0], 33, 1) << number;
    EXPECT_NEAR(pictures[number]->chroma().data[1], 144, 1) << number;
  }
}

// Which no encoder can make small without need.
std::shared_ptr<MemoryPixelBuffer> noise(std::uint32_t& state) {
  const auto picture = MemoryPixelBuffer::create(320, 160);
  for (std::size_t row = 0; row < 160; ++row)
    for (std::uint8_t& value : picture->lumaRow(row))
      value = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24);
  return picture;
}

TEST(H264EncoderTest, KeepsToTheBitrate) {
  for (const int bitrate : {200'000, 800'000}) {
    Recorder recorder({.width = 320, .height = 160, .bitrate = bitrate, .fps = 10});
    std::uint32_t state = 1;
    for (int number = 0; number < 60; ++number) ASSERT_TRUE(recorder.encoder->encodeImage(noise(state), {number, 10}));
    double bits = 0;
    for (std::size_t i = 30; i < 60; ++i) bits += 8.0 * static_cast<double>(recorder.units[i].bytes.size());
    EXPECT_LT(bits / 3, 1.25 * bitrate);
    EXPECT_GT(bits / 3, 0.6 * bitrate);
  }
}

// Four seconds of a still picture leave the buffer full; then everything changes in each picture.
TEST(H264EncoderTest, SpendsASecondOfBitsInAdvanceAtMost) {
  constexpr int kBitrate = 800'000;
  Recorder recorder({.width = 320, .height = 160, .bitrate = kBitrate, .fps = 10});
  std::uint32_t state = 1;
  for (int number = 0; number < 60; ++number) {
    const auto picture = number < 40 ? scene(0) : noise(state);
    ASSERT_TRUE(recorder.encoder->encodeImage(picture, {number, 10}));
  }
  double most = 0;
  for (std::size_t first = 0; first + 10 <= 60; ++first) {
    double bits = 0;
    for (std::size_t i = first; i < first + 10; ++i) bits += 8.0 * static_cast<double>(recorder.units[i].bytes.size());
    most = std::max(most, bits);
  }
  EXPECT_LT(most, 2.0 * kBitrate);  // a second's own, and one in advance
}

TEST(H264EncoderTest, LetsGoOfThePicture) {
  Recorder recorder(kSmall);
  const auto picture = scene(0);
  const std::weak_ptr<MemoryPixelBuffer> watch = picture;
  ASSERT_TRUE(recorder.encoder->encodeImage(picture, {}));
  EXPECT_EQ(watch.use_count(), 1);
}

TEST(H264EncoderTest, TakesPicturesWithGapsBetweenTheRows) {
  Recorder narrow({.width = 34, .height = 18, .bitrate = 500'000, .fps = 10});
  ASSERT_TRUE(narrow.isOpen);
  const auto picture = scene(0, 34, 18);
  ASSERT_GT(picture->luma().stride, 34u);
  ASSERT_TRUE(narrow.encoder->encodeImage(picture, {}));
  const auto pictures = decoded(narrow);
  ASSERT_THAT(pictures, SizeIs(1));
  EXPECT_EQ(pictures[0]->width(), 34);
  EXPECT_EQ(pictures[0]->height(), 18);
  EXPECT_GT(psnr(pictures[0]->luma(), picture->luma()), 30);
}

TEST(H264EncoderTest, EncodesByEveryPreset) {
  for (const char* preset : {"ultrafast", "superfast", "veryfast", "faster", "fast", "medium"}) {
    Recorder recorder(kSmall, {.preset = preset});
    ASSERT_TRUE(recorder.isOpen);
    recorder.encode(4);
    EXPECT_THAT(recorder.units, SizeIs(4));
    EXPECT_THAT(decoded(recorder), SizeIs(4));
  }
}

TEST(H264EncoderTest, SeveralThreadsHoldPicturesBackButLoseNone) {
  Recorder recorder(kSmall, {.threads = 3});
  recorder.encode(12);
  ASSERT_THAT(recorder.units, SizeIs(10));  // two are inside
  for (std::size_t i = 0; i < recorder.units.size(); ++i) {
    EXPECT_EQ(recorder.units[i].time, (MediaTime{100 * static_cast<std::int64_t>(i), 1000}));
    EXPECT_TRUE(parseH264SliceStart(recorder.units[i].unit())->beginsPicture);
  }
  EXPECT_THAT(decoded(recorder), SizeIs(10));
}

TEST(H264EncoderTest, RefusesPicturesOfAnotherSizeAndGoesOn) {
  Recorder recorder(kSmall);
  EXPECT_FALSE(recorder.encoder->encodeImage(nullptr, {}));
  EXPECT_FALSE(recorder.encoder->encodeImage(scene(0, 322, 160), {}));
  EXPECT_FALSE(recorder.encoder->encodeImage(scene(0, 160, 320), {}));
  recorder.encode(3);
  EXPECT_THAT(recorder.units, SizeIs(3));
  EXPECT_THAT(decoded(recorder), SizeIs(3));
}

// Says that it is larger than it is.
class ShortBuffer final : public PixelBuffer {
 public:
  std::int32_t width() const override { return 320; }
  std::int32_t height() const override { return 160; }
  PixelPlane luma() const override { return {bytes_.data(), 320, 320, 159}; }
  PixelPlane chroma() const override { return {bytes_.data(), 320, 320, 80}; }

 private:
  std::vector<std::uint8_t> bytes_ = std::vector<std::uint8_t>(320 * 160);
};

TEST(H264EncoderTest, RefusesAPictureThatLacksARow) {
  Recorder recorder(kSmall);
  EXPECT_FALSE(recorder.encoder->encodeImage(std::make_shared<ShortBuffer>(), {}));
  EXPECT_THAT(recorder.units, IsEmpty());
}

bool opens(VideoEncoderSettings settings) { return LibavVideoEncoders().create(settings)->open(); }

TEST(H264EncoderTest, OpensForNoSettingsThatMakeNoSense) {
  const auto with = [](auto change) {
    VideoEncoderSettings settings = kSmall;
    change(settings);
    return opens(settings);
  };
  EXPECT_TRUE(with([](auto&) {}));
  for (const int side : {0, -2, 14, 161, 16386, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    EXPECT_FALSE(with([&](auto& settings) { settings.width = side; })) << side;
    EXPECT_FALSE(with([&](auto& settings) { settings.height = side; })) << side;
  }
  EXPECT_FALSE(opens({.width = 8192, .height = 4354, .bitrate = 1'000'000, .fps = 30}));
  for (const int bitrate : {0, -1, 999}) EXPECT_FALSE(with([&](auto& settings) { settings.bitrate = bitrate; }));
  EXPECT_TRUE(with([](auto& settings) { settings.bitrate = 1000; }));
  for (const int fps : {0, -1, 301}) EXPECT_FALSE(with([&](auto& settings) { settings.fps = fps; })) << fps;
  EXPECT_TRUE(with([](auto& settings) { settings.fps = 1; }));
  EXPECT_TRUE(with([](auto& settings) { settings.fps = 300; }));
}

TEST(H264EncoderTest, OpensTheLargestBitrate) {
  VideoEncoderSettings settings = kSmall;
  settings.bitrate = std::numeric_limits<std::int32_t>::max();
  Recorder recorder(settings);
  ASSERT_TRUE(recorder.isOpen);
  recorder.encode(2);
}

TEST(H264EncoderTest, EncodesNothingBeforeItIsOpen) {
  const auto encoder = LibavVideoEncoders().create(kSmall);
  EXPECT_FALSE(encoder->encodeImage(scene(0), {}));
}

TEST(H264EncoderTest, WorksWithoutAReceiver) {
  const auto encoder = LibavVideoEncoders().create(kSmall);
  ASSERT_TRUE(encoder->open());
  EXPECT_TRUE(encoder->encodeImage(scene(0), {}));
}

TEST(H264EncoderTest, SeveralEncodersWorkSideBySide) {
  std::atomic<int> complete = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&complete] {
      Recorder recorder(kSmall);
      recorder.encode(12);
      if (decoded(recorder).size() == 12) ++complete;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(complete, 4);
}

TEST(H264EncoderTest, SaysNothing) {
  testing::internal::CaptureStderr();
  {
    Recorder recorder({.width = 320, .height = 160, .bitrate = 1000, .fps = 10});
    recorder.encode(3);
    opens({.width = 320, .height = 160, .bitrate = -1, .fps = 10});
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace zel::platform
