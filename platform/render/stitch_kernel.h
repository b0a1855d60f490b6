#pragma once

#include <cstdint>
#include <span>

#include "platform/render/kernel_shapes.h"
#include "platform/render/plane_map.h"

namespace zel::render {

// Bilinear, with weights in 128ths in each direction. Positions outside the plane are moved to its edge; no byte
// outside it is read, not even one after the last row. Integers only: every processor gives the same bytes.
// Thread: any thread.
void stitchLuma(const SourcePlane& source, std::span<const Segment> segments, const RunShape& shape, std::uint16_t gain,
                std::uint8_t* out);
void stitchLumaBlend(const SourcePlane& source, std::span<const BlendSegment> segments, const RunShape& shape,
                     const LensGains& gains, std::uint8_t* out);
void stitchChroma(const SourcePlane& source, std::span<const Segment> segments, const RunShape& shape,
                  std::uint16_t gain, std::uint8_t* out);
void stitchChromaBlend(const SourcePlane& source, std::span<const BlendSegment> segments, const RunShape& shape,
                       const LensGains& gains, std::uint8_t* out);

}  // namespace zel::render
