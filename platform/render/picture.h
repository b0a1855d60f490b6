#pragma once

#include <cstddef>
#include <cstdint>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

namespace zel::render {

// Units:  pixels.
struct PictureSize {
  int width = 0, height = 0;

  bool operator==(const PictureSize&) const = default;
};

// The planes of an NV12 picture for writing: luma, one byte a pixel, and interleaved Cb and Cr at half the width and
// height.
// Units:  bytes from one row to the next.
struct OutputPicture {
  std::uint8_t* luma = nullptr;
  std::size_t lumaStride = 0;
  std::uint8_t* chroma = nullptr;
  std::size_t chromaStride = 0;
};

inline OutputPicture outputOf(platform::MemoryPixelBuffer& picture) {
  return {picture.lumaRow(0).data(), picture.luma().stride, picture.chromaRow(0).data(), picture.chroma().stride};
}

}  // namespace zel::render
