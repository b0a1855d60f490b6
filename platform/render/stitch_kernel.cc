#include "platform/render/stitch_kernel.h"

#include <algorithm>
#include <cstring>

// The file includes itself once for each target processor.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/render/stitch_kernel.cc"
#include <hwy/foreach_target.h>
// After it, for each target.
#include <hwy/highway.h>

#include "platform/render/plain_kernels.h"
#include "platform/render/vector_kernels.h"

HWY_BEFORE_NAMESPACE();
namespace zel::render::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
namespace kernels = zel::render::plain;
#else
namespace kernels = zel::render::HWY_NAMESPACE;
#endif

// Whole segments are written directly, others through a small buffer.
template <class Kernel, class AnySegment>
HWY_INLINE void writeRun(const Kernel& kernel, std::span<const AnySegment> segments, const RunShape& shape,
                         std::uint8_t* out) {
  std::size_t left = shape.pixels;
  for (const AnySegment& segment : segments) {
    const std::size_t pixels = std::min(left, shape.segmentPixels);
    if (pixels == kSegmentPixels) {
      writeWhole(kernel, segment, out);
    } else {
      std::uint8_t whole[kSegmentPixels * Kernel::kPixelBytes];
      writeWhole(kernel, segment, whole);
      std::memcpy(out, whole, pixels * Kernel::kPixelBytes);
    }
    out += pixels * Kernel::kPixelBytes;
    left -= pixels;
  }
}

void luma(const SourcePlane& source, std::span<const Segment> segments, const RunShape& shape, std::uint16_t gain,
          std::uint8_t* out) {
  writeRun(kernels::LumaOfOne{source, gain}, segments, shape, out);
}

void lumaBlend(const SourcePlane& source, std::span<const BlendSegment> segments, const RunShape& shape,
               const LensGains& gains, std::uint8_t* out) {
  writeRun(kernels::LumaOfBoth{source, gains}, segments, shape, out);
}

void chroma(const SourcePlane& source, std::span<const Segment> segments, const RunShape& shape, std::uint16_t gain,
            std::uint8_t* out) {
  writeRun(kernels::ChromaOfOne{source, gain}, segments, shape, out);
}

void chromaBlend(const SourcePlane& source, std::span<const BlendSegment> segments, const RunShape& shape,
                 const LensGains& gains, std::uint8_t* out) {
  writeRun(kernels::ChromaOfBoth{source, gains}, segments, shape, out);
}

}  // namespace zel::render::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::render {

HWY_EXPORT(luma);
HWY_EXPORT(lumaBlend);
HWY_EXPORT(chroma);
HWY_EXPORT(chromaBlend);

void stitchLuma(const SourcePlane& source, std::span<const Segment> segments, const RunShape& shape, std::uint16_t gain,
                std::uint8_t* out) {
  HWY_DYNAMIC_DISPATCH(luma)(source, segments, shape, gain, out);
}

void stitchLumaBlend(const SourcePlane& source, std::span<const BlendSegment> segments, const RunShape& shape,
                     const LensGains& gains, std::uint8_t* out) {
  HWY_DYNAMIC_DISPATCH(lumaBlend)(source, segments, shape, gains, out);
}

void stitchChroma(const SourcePlane& source, std::span<const Segment> segments, const RunShape& shape,
                  std::uint16_t gain, std::uint8_t* out) {
  HWY_DYNAMIC_DISPATCH(chroma)(source, segments, shape, gain, out);
}

void stitchChromaBlend(const SourcePlane& source, std::span<const BlendSegment> segments, const RunShape& shape,
                       const LensGains& gains, std::uint8_t* out) {
  HWY_DYNAMIC_DISPATCH(chromaBlend)(source, segments, shape, gains, out);
}

}  // namespace zel::render
#endif  // HWY_ONCE
