#pragma once

#include <cstddef>
#include <cstdint>

namespace zel::render {

// Units: pixels.
struct PictureSize {
  int width = 0, height = 0;

  bool operator==(const PictureSize&) const = default;
};

// The planes of an NV12 picture to be written: luma, a byte a pixel, and Cb and Cr in turn at half the width and
// height. Units: bytes from one row to the next.
struct OutputPicture {
  std::uint8_t* luma = nullptr;
  std::size_t lumaStride = 0;
  std::uint8_t* chroma = nullptr;
  std::size_t chromaStride = 0;
};

}  // namespace zel::render
