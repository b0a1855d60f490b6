#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <ZELTarkaSDK/platform/picture_colour.h>

namespace zel::platform {

// Rows of bytes, `stride` bytes apart.
struct PixelPlane {
  const std::uint8_t* data = nullptr;
  std::size_t stride = 0;    // at least rowBytes
  std::size_t rowBytes = 0;  // the part that belongs to the picture
  std::size_t rows = 0;
};

// The number of chroma samples along a side of that many pixels; at least 1.
constexpr std::size_t chromaSamples(std::int32_t side) { return (static_cast<std::size_t>(side) + 1) / 2; }

// A picture in 4:2:0 bi-planar full range (NV12): a luma plane with one byte a pixel, and a plane of interleaved Cb and
// Cr with half the width and height, rounded up.
// Owner:  shared; the pixels live until the last reference is released, also after their decoder was destroyed.
// Thread: any thread. A shared picture does not change.
class PixelBuffer {
 public:
  virtual ~PixelBuffer() = default;

  // Units:  pixels, at least 1.
  virtual std::int32_t width() const = 0;
  virtual std::int32_t height() const = 0;

  virtual PixelPlane luma() const = 0;
  virtual PixelPlane chroma() const = 0;

  // The colour description. The default is BT.601.
  virtual PictureColour colour() const { return {}; }
};

using PixelBufferRef = std::shared_ptr<const PixelBuffer>;

}  // namespace zel::platform
