#include "platform/render/stitch_kernel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hwy/targets.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

namespace zel::render {
namespace {

using testing::Each;
using testing::ElementsAre;

constexpr RunShape kWhole{16, 16};

// All 16 pixels at one place.
Segment segmentAt(double x, double y) {
  return {static_cast<std::int32_t>(x * 8192), static_cast<std::int32_t>(y * 8192), 0, 0};
}

// Each kind of processor that this one can play.
class StitchKernelTest : public testing::TestWithParam<std::int64_t> {
 protected:
  StitchKernelTest() { hwy::SetSupportedTargetsForTest(GetParam()); }
  ~StitchKernelTest() override { hwy::SetSupportedTargetsForTest(0); }

  std::vector<std::uint8_t> luma(const SourcePlane& source, const Segment& segment, std::uint16_t gain = kUnityGain) {
    std::vector<std::uint8_t> out(16);
    stitchLuma(source, {&segment, 1}, kWhole, gain, out.data());
    return out;
  }

  std::vector<std::uint8_t> chroma(const SourcePlane& source, const Segment& segment, std::uint16_t gain = kUnityGain) {
    std::vector<std::uint8_t> out(32);
    stitchChroma(source, {&segment, 1}, kWhole, gain, out.data());
    return {out[0], out[1], out[30], out[31]};
  }

  // clang-format off
  const std::array<std::uint8_t, 16> pixels_{  0, 100, 200,  50,
                                              40,  80, 120, 160,
                                             255, 255, 255, 255,
                                               7,   0,   0,   9};
  // Three samples a row: Cb, Cr.
  const std::array<std::uint8_t, 12> colours_{128, 100,   148, 120,   168, 140,
                                              128, 100,   128, 200,   128, 220};
  // clang-format on
  const SourcePlane luma_{pixels_.data(), 4, 4, 4};
  const SourcePlane chroma_{colours_.data(), 6, 3, 2};
};

TEST_P(StitchKernelTest, ReadsAPixelAsItIs) {
  EXPECT_THAT(luma(luma_, segmentAt(1, 0)), Each(100));
  EXPECT_THAT(luma(luma_, segmentAt(0, 2)), Each(255));
  EXPECT_THAT(chroma(chroma_, segmentAt(1, 0)), ElementsAre(148, 120, 148, 120));
}

TEST_P(StitchKernelTest, MixesFourNeighbours) {
  // 150 above and 100 below: 137.5, and halves go up.
  EXPECT_THAT(luma(luma_, segmentAt(1.5, 0.25)), Each(138));
  // Above 158 and 130, below 128 and 210.
  EXPECT_THAT(chroma(chroma_, segmentAt(1.5, 0.5)), ElementsAre(143, 170, 143, 170));
}

TEST_P(StitchKernelTest, MultipliesByTheGain) {
  EXPECT_THAT(luma(luma_, segmentAt(1.5, 0.25), 36045), Each(151));                       // 137.5 * 1.1 = 151.25
  EXPECT_THAT(luma(luma_, segmentAt(2, 0), 49152), Each(255));                            // 300 at most 255
  EXPECT_THAT(chroma(chroma_, segmentAt(2, 0), 49152), ElementsAre(188, 146, 188, 146));  // 40 and 12 by 1.5
}

TEST_P(StitchKernelTest, FollowsTheParabola) {
  std::vector<std::uint8_t> ramp(64 * 2);
  for (std::size_t i = 0; i < ramp.size(); ++i) ramp[i] = static_cast<std::uint8_t>(2 * (i % 64));
  // Twice the place 20 + (j + q) / 4.
  const Segment segment{20 * 8192, 0, 2048 | 2048u << 16, 0};
  EXPECT_THAT(luma({ramp.data(), 64, 64, 2}, segment),
              ElementsAre(47, 44, 42, 41, 40, 39, 39, 40, 41, 42, 44, 47, 50, 53, 57, 62));
}

TEST_P(StitchKernelTest, MovesPlacesOutsideToTheEdge) {
  EXPECT_THAT(luma(luma_, segmentAt(-50, -9000)), Each(0));
  EXPECT_THAT(luma(luma_, segmentAt(9000, 1)), Each(160));
  EXPECT_THAT(luma(luma_, segmentAt(-1, 9000)), Each(9));  // 127/128 of the way from 255 to 7
  EXPECT_THAT(chroma(chroma_, segmentAt(-1, 0)), ElementsAre(128, 100, 128, 100));
}

TEST_P(StitchKernelTest, BlendsBothLensesByTheirShares) {
  BlendSegment segment{{segmentAt(1, 0), segmentAt(2, 0)}, {}};
  segment.shares.fill({32, 96});
  segment.shares[15] = {0, 0};
  std::array<std::uint8_t, 16> out{};
  stitchLumaBlend(luma_, {&segment, 1}, kWhole, {}, out.data());
  EXPECT_EQ(out[0], 175);  // 100 / 4 + 200 * 3 / 4
  EXPECT_EQ(out[14], 175);
  EXPECT_EQ(out[15], 0);
  std::array<std::uint8_t, 32> colours{};
  stitchChromaBlend(chroma_, {&segment, 1}, kWhole, {}, colours.data());
  EXPECT_EQ(colours[0], 163);  // 148 / 4 + 168 * 3 / 4
  EXPECT_EQ(colours[1], 135);  // 120 / 4 + 140 * 3 / 4
  EXPECT_EQ(colours[30], 128);
  EXPECT_EQ(colours[31], 128);
}

TEST_P(StitchKernelTest, WritesNoMoreThanItsPixels) {
  const std::array<Segment, 3> segments{segmentAt(0, 2), segmentAt(0, 2), segmentAt(0, 2)};
  std::array<std::uint8_t, 20> out{};
  stitchLuma(luma_, segments, {8, 19}, kUnityGain, out.data());
  EXPECT_EQ(out[18], 255);
  EXPECT_EQ(out[19], 0);
}

// A plane that ends where the memory does, with forbidden pages on both sides.
class FencedPlane {
 public:
  explicit FencedPlane(std::size_t bytes, bool atTheEnd) : page_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
    memory_ = static_cast<std::uint8_t*>(mmap(nullptr, 3 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    EXPECT_EQ(mprotect(memory_ + page_, page_, PROT_READ | PROT_WRITE), 0);
    data_ = memory_ + page_ + (atTheEnd ? page_ - bytes : 0);
    std::fill_n(data_, bytes, std::uint8_t{77});
  }
  ~FencedPlane() { munmap(memory_, 3 * page_); }
  FencedPlane(const FencedPlane&) = delete;
  FencedPlane& operator=(const FencedPlane&) = delete;

  const std::uint8_t* data() const { return data_; }

 private:
  const std::size_t page_;
  std::uint8_t* memory_;
  std::uint8_t* data_;
};

TEST_P(StitchKernelTest, ReadsNoByteOutsideThePlane) {
  for (const bool atTheEnd : {false, true}) {
    const FencedPlane plane(12, atTheEnd);
    for (const double x : {-9000.0, -0.5, 0.0, 1.0, 2.0, 9000.0}) {
      for (const double y : {-9000.0, 0.0, 1.0, 2.0, 9000.0}) {
        EXPECT_THAT(luma({plane.data(), 4, 4, 3}, segmentAt(x, y)), Each(77));
        EXPECT_THAT(luma({plane.data(), 2, 2, 6}, segmentAt(x, y)), Each(77));
        EXPECT_THAT(chroma({plane.data(), 6, 3, 2}, segmentAt(x, y)), Each(77));
      }
    }
  }
}

// Everything the kernels can be asked, far places and steep shapes among it.
std::vector<std::uint8_t> everything() {
  std::mt19937 random(7);
  std::vector<std::uint8_t> plane(80 * 48);
  for (auto& byte : plane) byte = static_cast<std::uint8_t>(random());
  const auto place = [&](int size) {
    return static_cast<std::int32_t>(random() % (static_cast<unsigned>(size) * 9000)) - 8192;
  };
  const auto segment = [&] {
    return Segment{place(70), place(48), static_cast<std::uint32_t>(random()), static_cast<std::uint32_t>(random())};
  };
  std::vector<std::uint8_t> out(200 * 96);
  for (std::size_t i = 0; i < 200; ++i) {
    const auto gain = static_cast<std::uint16_t>(20000 + random() % 30000);
    const Segment one = segment();
    BlendSegment both{{segment(), segment()}, {}};
    for (auto& shares : both.shares)
      shares[1] = static_cast<std::uint8_t>(128 - (shares[0] = static_cast<std::uint8_t>(random() % 129)));
    const LensGains gains{{gain, static_cast<std::uint16_t>(65535 - gain)}};
    const SourcePlane luma{plane.data(), 80, 70, 48}, chroma{plane.data(), 80, 35, 48};
    std::uint8_t* at = out.data() + i * 96;
    stitchLuma(luma, {&one, 1}, kWhole, gain, at);
    stitchLumaBlend(luma, {&both, 1}, kWhole, gains, at + 16);
    stitchChroma(chroma, {&one, 1}, kWhole, gain, at + 32);
    stitchChromaBlend(chroma, {&both, 1}, kWhole, gains, at + 64);
  }
  return out;
}

TEST_P(StitchKernelTest, GivesTheSameBytesOnEveryProcessor) {
  const auto vectors = everything();
  hwy::SetSupportedTargetsForTest(HWY_STATIC_TARGET);  // what every processor can do
  EXPECT_EQ(vectors, everything());
}

std::vector<std::int64_t> targets() {
  std::vector<std::int64_t> result;
  for (std::int64_t left = hwy::SupportedTargets() & HWY_TARGETS; left != 0; left &= left - 1)
    result.push_back(left & -left);
  return result;
}

INSTANTIATE_TEST_SUITE_P(Processors, StitchKernelTest, testing::ValuesIn(targets()),
                         [](const auto& target) { return std::string(hwy::TargetName(target.param)); });

}  // namespace
}  // namespace zel::render
