// The vector kernels. Included once for each target processor, so deliberately without an include guard.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/render/kernel_shapes.h"
#include "platform/render/plane_map.h"

#include <hwy/highway.h>

#if defined(ZEL_RENDER_VECTOR_KERNELS) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEL_RENDER_VECTOR_KERNELS
#undef ZEL_RENDER_VECTOR_KERNELS
#else
#define ZEL_RENDER_VECTOR_KERNELS
#endif

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace zel::render::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// One lane of 32 bits for a pixel.
using D32 = hn::CappedTag<std::int32_t, kSegmentPixels>;
using D16 = hn::Repartition<std::int16_t, D32>;
using DU16 = hn::Repartition<std::uint16_t, D32>;
using DU32 = hn::Repartition<std::uint32_t, D32>;
using DU8 = hn::Repartition<std::uint8_t, D32>;
using V32 = hn::Vec<D32>;
using V16 = hn::Vec<D16>;
using VU8 = hn::Vec<DU8>;

// The oldest target does without, so that the code for other processors is tested too.
#if HWY_TARGET == HWY_AVX3
#define ZEL_RENDER_X86(name) _mm512_##name
#elif HWY_TARGET == HWY_AVX2
#define ZEL_RENDER_X86(name) _mm256_##name
#elif HWY_TARGET == HWY_SSE4
#define ZEL_RENDER_X86(name) _mm_##name
#endif

// a[0] * b[0] + a[1] * b[1] of each pair of 16-bit lanes.
HWY_INLINE V32 sumOfPairs(V16 a, V16 b) {
#ifdef ZEL_RENDER_X86
  return V32{ZEL_RENDER_X86(madd_epi16)(a.raw, b.raw)};
#else
  const D32 d;
  const V32 a32 = hn::BitCast(d, a), b32 = hn::BitCast(d, b);
  const V32 low = hn::Mul(hn::ShiftRight<16>(hn::ShiftLeft<16>(a32)), hn::ShiftRight<16>(hn::ShiftLeft<16>(b32)));
  return hn::Add(low, hn::Mul(hn::ShiftRight<16>(a32), hn::ShiftRight<16>(b32)));
#endif
}

// The same of each pair of bytes, shares being unsigned and values signed; the sums must fit.
HWY_INLINE V16 sumOfBytePairs(V16 shares, V16 values) {
#ifdef ZEL_RENDER_X86
  return V16{ZEL_RENDER_X86(maddubs_epi16)(shares.raw, values.raw)};
#else
  const D16 d;
  const DU16 du;
  const V16 low = hn::Mul(hn::And(shares, hn::Set(d, 0xFF)), hn::ShiftRight<8>(hn::ShiftLeft<8>(values)));
  const V16 highShares = hn::BitCast(d, hn::ShiftRight<8>(hn::BitCast(du, shares)));
  return hn::Add(low, hn::Mul(highShares, hn::ShiftRight<8>(values)));
#endif
}

// Loads four unaligned bytes from each position. One load a lane is as fast as the AVX2 gather instruction, or faster
// by a third where microcode has slowed that down to close a leak.
HWY_INLINE V32 gather(const std::uint8_t* base, V32 offsets) {
  const D32 d;
#if HWY_TARGET == HWY_AVX3
  return hn::GatherOffset(d, reinterpret_cast<const std::int32_t*>(base), offsets);
#else
  HWY_ALIGN std::int32_t at[kSegmentPixels];
  hn::Store(offsets, d, at);
  const auto word = [&](std::size_t lane) HWY_ATTR {
    std::int32_t value;
    std::memcpy(&value, base + at[lane], sizeof(value));
    return value;
  };
#if HWY_TARGET == HWY_AVX2
  return V32{_mm256_setr_epi32(word(0), word(1), word(2), word(3), word(4), word(5), word(6), word(7))};
#else
  HWY_ALIGN std::int32_t words[kSegmentPixels];
  for (std::size_t lane = 0; lane < hn::Lanes(d); ++lane) words[lane] = word(lane);
  return hn::Load(d, words);
#endif
#endif
}

// j and q of Segment for each pixel.
HWY_ALIGN constexpr std::int16_t kCurve[2 * kSegmentPixels] = {-15, 28, -13, 21, -11, 15, -9, 10, -7, 6, -5,
                                                               3,   -3, 1,   -1, 0,   1,  0,  3,  1,  5, 3,
                                                               7,   6,  9,   10, 11,  15, 13, 21, 15, 28};

// Source positions: the offset of the top left neighbour in bytes, and the 128ths to its right and below it.
struct Place {
  V32 offset, right, down;
};

// The state shared by all segments of a run.
template <int kPixelBytes>
class Reader {
 public:
  Reader(const SourcePlane& source)
      : top_(source.data),
        bottom_(source.data + source.stride),
        stride_(source.stride),
        lastX_((source.width - 1) * (1 << kPlaceBits) - 1),
        lastY_((source.height - 1) * (1 << kPlaceBits) - 1) {}

  HWY_INLINE Place placeOf(const Segment& segment, std::size_t part) const {
    const D32 d;
    const D16 d16;
    const V16 curve = hn::Load(d16, kCurve + 2 * part);
    const V32 x = along(segment.x, segment.shapeX, curve, lastX_);
    const V32 y = along(segment.y, segment.shapeY, curve, lastY_);
    const V32 column = hn::ShiftRight<kPlaceBits>(x), row = hn::ShiftRight<kPlaceBits>(y);
    const V32 start = kPixelBytes == 2 ? hn::Add(column, column) : column;
    const V32 mask = hn::Set(d, 127);
    return {hn::Add(hn::Mul(row, hn::Set(d, stride_)), start), hn::And(hn::ShiftRight<kPlaceBits - 7>(x), mask),
            hn::And(hn::ShiftRight<kPlaceBits - 7>(y), mask)};
  }

  // 256 times the luma, in each lane's low half.
  HWY_INLINE V32 luma(const Segment& segment, std::size_t part) const {
    const D32 d;
    const D16 d16;
    const Place at = placeOf(segment, part);
    // The upper bytes are first in their word, the lower ones last: the lower word starts two bytes earlier, so that
    // neither load reads outside the plane.
    const V16 above = hn::BitCast(d16, gather(top_, at.offset));
    const V16 below = hn::BitCast(d16, gather(bottom_ - 2, at.offset));
    const V16 rows = sumOfBytePairs(sharesAcross(at.right), centred(hn::OddEven(below, above)));
    const V32 both = hn::Add(hn::Sub(hn::Set(d, 128), at.down), hn::ShiftLeft<16>(at.down));
    const V32 sum = sumOfPairs(rows, hn::BitCast(d16, both));
    return hn::ShiftRight<6>(hn::Add(sum, hn::Set(d, (1 << 21) + 32)));
  }

  // 128 times the distance from grey, Cb in each lane's low half and Cr in the high one.
  HWY_INLINE V16 chroma(const Segment& segment, std::size_t part) const {
    const D16 d16;
    const Place at = placeOf(segment, part);
    const V16 shares = sharesAcross(at.right);
    const V16 above = sumOfBytePairs(shares, byColour(gather(top_, at.offset)));
    const V16 below = sumOfBytePairs(shares, byColour(gather(bottom_, at.offset)));
    const V32 down = hn::Or(at.down, hn::ShiftLeft<16>(at.down));
    return hn::Add(above, hn::MulFixedPoint15(hn::Sub(below, above), hn::ShiftLeft<8>(hn::BitCast(d16, down))));
  }

 private:
  static HWY_INLINE V32 along(std::int32_t start, std::uint32_t shape, V16 curve, std::int32_t last) {
    const D32 d;
    const V16 shapes = hn::BitCast(D16(), hn::Set(d, static_cast<std::int32_t>(shape)));
    const V32 place = hn::Add(hn::Set(d, start), sumOfPairs(shapes, curve));
    return hn::Min(hn::Max(place, hn::Zero(d)), hn::Set(d, last));
  }

  // (128 - right, right) as bytes, twice.
  static HWY_INLINE V16 sharesAcross(V32 right) {
    const D16 d;
    const V16 twice = hn::BitCast(d, hn::Or(right, hn::ShiftLeft<16>(right)));
    return hn::Add(hn::Sub(hn::ShiftLeft<8>(twice), twice), hn::Set(d, 128));
  }

  // Bytes minus 128: shares of 128 fit only unsigned bytes, and one factor must be signed.
  static HWY_INLINE V16 centred(V16 bytes) {
    const D16 d;
    return hn::Xor(bytes, hn::Set(d, static_cast<std::int16_t>(0x8080)));
  }

  // Cb, Cr, Cb, Cr -> Cb, Cb, Cr, Cr
  static HWY_INLINE V16 byColour(V32 pixels) {
    HWY_ALIGN static constexpr std::uint8_t kOrder[16] = {0, 2, 1, 3, 4, 6, 5, 7, 8, 10, 9, 11, 12, 14, 13, 15};
    const DU8 d;
    const VU8 order = hn::LoadDup128(d, kOrder);
    return centred(hn::BitCast(D16(), hn::TableLookupBytes(hn::BitCast(d, pixels), order)));
  }

  const std::uint8_t* const top_;
  const std::uint8_t* const bottom_;
  const std::int32_t stride_;
  const std::int32_t lastX_, lastY_;
};

// 128 times the luma after the gain. Both halves of each lane are multiplied; the high one is 0.
HWY_INLINE V32 amplified(V32 luma, std::uint16_t gain) {
  const DU16 d;
  return hn::BitCast(D32(), hn::MulHigh(hn::BitCast(d, luma), hn::Set(d, gain)));
}

// 64 times the distance from grey after the gain.
HWY_INLINE V16 amplified(V16 chroma, std::uint16_t gain) {
  return hn::MulFixedPoint15(chroma, hn::Set(D16(), static_cast<std::int16_t>(gain / 2)));
}

HWY_INLINE void storeLuma(V32 luma, std::uint8_t* out) {
  const hn::Rebind<std::uint8_t, D32> d8;
  hn::StoreU(hn::DemoteTo(d8, luma), d8, out);
}

HWY_INLINE void storeChroma(V16 fromGrey, std::uint8_t* out) {
  const hn::Rebind<std::uint8_t, D16> d8;
  hn::StoreU(hn::DemoteTo(d8, hn::Add(fromGrey, hn::Set(D16(), 128))), d8, out);
}

// Shares of both lenses: the first one's in each lane's low half, the second one's in the high one.
HWY_INLINE V32 sharesOf(const BlendSegment& segment, std::size_t part) {
  const hn::Rebind<std::uint8_t, D16> d8;
  return hn::BitCast(D32(), hn::PromoteTo(D16(), hn::LoadU(d8, segment.shares[part].data())));
}

// The 16 pixels of a segment.
template <class Kernel, class AnySegment>
HWY_INLINE void writeWhole(const Kernel& kernel, const AnySegment& segment, std::uint8_t* out) {
  const std::size_t lanes = hn::Lanes(D32());
  for (std::size_t part = 0; part < kSegmentPixels; part += lanes)
    kernel.writePart(segment, part, out + part * Kernel::kPixelBytes);
}

struct LumaOfOne {
  static constexpr std::size_t kPixelBytes = 1;
  const Reader<1> reader;
  const std::uint16_t gain;

  HWY_INLINE void writePart(const Segment& segment, std::size_t part, std::uint8_t* out) const {
    const V32 luma = amplified(reader.luma(segment, part), gain);
    storeLuma(hn::ShiftRight<7>(hn::Add(luma, hn::Set(D32(), 64))), out);
  }
};

struct LumaOfBoth {
  static constexpr std::size_t kPixelBytes = 1;
  const Reader<1> reader;
  const LensGains gains;

  HWY_INLINE void writePart(const BlendSegment& segment, std::size_t part, std::uint8_t* out) const {
    const D16 d16;
    const V32 first = hn::ShiftRight<1>(amplified(reader.luma(segment.lens[0], part), gains.lens[0]));
    const V32 second = hn::ShiftRight<1>(amplified(reader.luma(segment.lens[1], part), gains.lens[1]));
    const V16 both = hn::BitCast(d16, hn::Or(first, hn::ShiftLeft<16>(second)));
    const V32 sum = sumOfPairs(both, hn::BitCast(d16, sharesOf(segment, part)));
    storeLuma(hn::ShiftRight<13>(hn::Add(sum, hn::Set(D32(), 1 << 12))), out);
  }
};

struct ChromaOfOne {
  static constexpr std::size_t kPixelBytes = 2;
  const Reader<2> reader;
  const std::uint16_t gain;

  HWY_INLINE void writePart(const Segment& segment, std::size_t part, std::uint8_t* out) const {
    const V16 chroma = amplified(reader.chroma(segment, part), gain);
    storeChroma(hn::ShiftRight<6>(hn::Add(chroma, hn::Set(D16(), 32))), out);
  }
};

struct ChromaOfBoth {
  static constexpr std::size_t kPixelBytes = 2;
  const Reader<2> reader;
  const LensGains gains;

  HWY_INLINE void writePart(const BlendSegment& segment, std::size_t part, std::uint8_t* out) const {
    const D16 d16;
    const V32 shares = sharesOf(segment, part);
    const V16 shareOfFirst = hn::BitCast(d16, hn::Or(hn::ShiftLeft<16>(shares), hn::And(shares, hn::Set(D32(), 0xFF))));
    const V16 shareOfSecond =
        hn::BitCast(d16, hn::Or(hn::ShiftRight<16>(shares), hn::And(shares, hn::Set(D32(), 0xFF0000))));
    const V16 first = amplified(reader.chroma(segment.lens[0], part), gains.lens[0]);
    const V16 second = amplified(reader.chroma(segment.lens[1], part), gains.lens[1]);
    // 32 times, because with one more bit a share of 128 does not fit into 16 bits.
    const V16 sum = hn::Add(hn::MulFixedPoint15(first, hn::ShiftLeft<7>(shareOfFirst)),
                            hn::MulFixedPoint15(second, hn::ShiftLeft<7>(shareOfSecond)));
    storeChroma(hn::ShiftRight<5>(hn::Add(sum, hn::Set(d16, 16))), out);
  }
};

#undef ZEL_RENDER_X86

}  // namespace zel::render::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // HWY_SCALAR, HWY_EMU128
#endif  // ZEL_RENDER_VECTOR_KERNELS
