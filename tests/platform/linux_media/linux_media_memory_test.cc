// The codecs and the renderer where memory ends: each allocation of theirs and of their libraries fails, one a run. A
// program of its own, because that replaces the allocator.

#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "platform/ffmpeg/h264_decoder.h"
#include "platform/ffmpeg/h264_encoder.h"
#include "platform/has_memory_for.h"
#include "platform/render/stitching_library.h"
#include "tests/allocation_fault.h"
#include "tests/platform/ffmpeg/stream_maker.h"
#include "tests/platform/render/pictures.h"

namespace zel::test {
namespace {

constexpr long kEach = 2000, kSeeded = 500;
constexpr long kBlock = 100;  // allocations of one test

const std::vector<Unit>& film() {
  static const std::vector<Unit> units = makeStream({.pictures = 4, .options = {{"preset", "ultrafast"}}});
  return units;
}

Unit prefixed(const Unit& unit) {
  Unit whole;
  for (int shift = 24; shift >= 0; shift -= 8) whole.push_back(static_cast<std::uint8_t>(unit.size() >> shift));
  whole.insert(whole.end(), unit.begin(), unit.end());
  return whole;
}

// The way of a camera's pictures from their units to those of the stitched ones.
class Road {
 public:
  // Returns how many units came out.
  int run() {
    ifMemoryAllows([this] { open(); });
    if (decoder_) {
      for (const Unit& unit : units_) ifMemoryAllows([&] { take(decoder_->decode(unit, 1).picture); });
      ifMemoryAllows([this] { take(decoder_->flush()); });
    }
    return out_;
  }

 private:
  void open() {
    decoder_ = decoders_.create(sps_, pps_).decoder;
    render_ = library_.createFlatOffscreenRender(160, 80);
    if (render_) render_->setOffset(render::kFactoryOffset);
    encoder_ = encoders_.create({160, 80, 1'000'000, 30});
    if (encoder_ && !encoder_->open()) encoder_.reset();
    if (encoder_) encoder_->setNaluCallback([this](std::uint8_t*, std::int32_t, bool, platform::MediaTime) { ++out_; });
  }

  void take(const platform::DecodedPicture& picture) {
    if (!picture.pixelBuffer || !render_ || !encoder_) return;
    const auto stitched = render_->renderVideo(picture.pixelBuffer);
    if (stitched) encoder_->encodeImage(stitched, {picture.timestamp, 1000});
  }

  static std::vector<Unit> prefixedFilm() {
    const FaultyCode test(false);
    std::vector<Unit> units;
    for (const Unit& unit : slicesOf(film())) units.push_back(prefixed(unit));
    return units;
  }

  static Unit parameterSet(int type) {
    const FaultyCode test(false);
    return firstOf(film(), type);
  }

  const std::vector<Unit> units_ = prefixedFilm();
  const Unit sps_ = parameterSet(7), pps_ = parameterSet(8);
  platform::LibavVideoDecoders decoders_;
  render::StitchingLibrary library_{nullptr, {.threads = 3}};
  platform::LibavVideoEncoders encoders_;
  std::unique_ptr<platform::VideoDecoder> decoder_;
  std::unique_ptr<platform::FlatOffscreenRender> render_;
  std::unique_ptr<platform::VideoEncoder> encoder_;
  int out_ = 0;
};

// Runs with that allocation failing. Returns how many units came out.
int runFailing(long number) {
  const FaultyCode test(false);
  const AllocationFault fault(number);
  countOnOtherThreads(true);
  int out = 0;
  {
    const FaultyCode counted;
    out = Road().run();
  }
  countOnOtherThreads(false);
  return out;
}

class LinuxMediaMemoryTest : public testing::TestWithParam<long> {
 protected:
  static void SetUpTestSuite() {
    for (int run = 0; run < 2; ++run) ASSERT_EQ(runFailing(0), 4);  // takes what is taken once and for all
  }

  static void expectNothingLeft(long number) {
    const long before = heldBytes();
    const int out = runFailing(number);
    EXPECT_LE(out, 4) << "allocation " << number;
    EXPECT_EQ(heldBytes(), before) << "allocation " << number;
  }
};

TEST_P(LinuxMediaMemoryTest, SurviveEachAllocationThatFailsAndKeepNothing) {
  for (long number = GetParam(); number < GetParam() + kBlock; ++number) expectNothingLeft(number);
}

INSTANTIATE_TEST_SUITE_P(TheFirst, LinuxMediaMemoryTest, testing::Range(1L, kEach, kBlock));

TEST_F(LinuxMediaMemoryTest, SurviveAnyLaterOne) {
  runFailing(0);
  const long allocations = AllocationFault::counted();
  if (allocations <= kEach) GTEST_SKIP() << "there are " << allocations << " allocations in all";
  std::minstd_rand random(1);
  for (long one = 0; one < kSeeded; ++one)
    expectNothingLeft(std::uniform_int_distribution<long>(kEach + 1, allocations)(random));
}

}  // namespace
}  // namespace zel::test
