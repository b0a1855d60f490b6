#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <ZELTarkaSDK/platform/picture_colour.h>

namespace zel::platform {

// Rows of bytes, each beginning `stride` bytes behind the one before.
struct PixelPlane {
  const std::uint8_t* data = nullptr;
  std::size_t stride = 0;    // at least rowBytes
  std::size_t rowBytes = 0;  // that belong to the picture
  std::size_t rows = 0;
};

// How many samples of chroma stand along a side of so many pixels, at least 1.
constexpr std::size_t chromaSamples(std::int32_t side) { return (static_cast<std::size_t>(side) + 1) / 2; }

// A picture in 4:2:0 bi-planar full range (NV12): a plane of luma with a byte a pixel, and a plane of Cb and Cr in turn
// at half the width and half the height, both rounded up.
// Owner:  shared; the pixels live until the last owner lets go, also after the decoder that made them has gone.
// Thread: any thread. A picture that is shared does not change any more.
class PixelBuffer {
 public:
  virtual ~PixelBuffer() = default;

  // Units:  pixels, at least 1.
  virtual std::int32_t width() const = 0;
  virtual std::int32_t height() const = 0;

  virtual PixelPlane luma() const = 0;
  virtual PixelPlane chroma() const = 0;

  // By which matrix the planes become red, green and blue, and what else is told of the colours. A picture that says
  // nothing is one of BT.601.
  virtual PictureColour colour() const { return {}; }
};

using PixelBufferRef = std::shared_ptr<const PixelBuffer>;

}  // namespace zel::platform
