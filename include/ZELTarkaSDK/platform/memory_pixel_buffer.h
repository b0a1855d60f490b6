#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel::platform {

// A picture in its own memory, to be filled before it is shared.
class MemoryPixelBuffer final : public PixelBuffer {
 public:
  // The largest width and height; a picture of that size takes 384 MiB.
  static constexpr std::int32_t kLargestSide = 16384;

  // A black picture.
  // Errors: null for a side below 1 or above kLargestSide.
  static std::shared_ptr<MemoryPixelBuffer> create(std::int32_t width, std::int32_t height) {
    if (std::min(width, height) < 1 || std::max(width, height) > kLargestSide) return nullptr;
    return std::shared_ptr<MemoryPixelBuffer>(new MemoryPixelBuffer(width, height));
  }

  // The same with each plane filled with one value.
  static std::shared_ptr<MemoryPixelBuffer> filled(std::int32_t width, std::int32_t height, std::uint8_t luma,
                                                   std::uint8_t cb, std::uint8_t cr) {
    auto picture = create(width, height);
    if (!picture) return nullptr;
    std::ranges::fill(picture->luma_, luma);
    for (std::size_t i = 0; i < picture->chroma_.size(); ++i) picture->chroma_[i] = i % 2 == 0 ? cb : cr;
    return picture;
  }

  std::int32_t width() const override { return width_; }
  std::int32_t height() const override { return height_; }
  PixelPlane luma() const override {
    return {luma_.data(), stride_, static_cast<std::size_t>(width_), static_cast<std::size_t>(height_)};
  }
  PixelPlane chroma() const override {
    return {chroma_.data(), stride_, chromaRowBytes(width_), chromaSamples(height_)};
  }
  PictureColour colour() const override { return colour_; }

  void setColour(const PictureColour& colour) { colour_ = colour; }

  // One row's bytes, for writing. The row must exist.
  std::span<std::uint8_t> lumaRow(std::size_t row) {
    return {luma_.data() + row * stride_, static_cast<std::size_t>(width_)};
  }
  std::span<std::uint8_t> chromaRow(std::size_t row) {
    return {chroma_.data() + row * stride_, chromaRowBytes(width_)};
  }

 private:
  static constexpr std::size_t kAlignment = 64;  // strides that suit vector code
  static constexpr std::uint8_t kNoColour = 128;

  static std::size_t chromaRowBytes(std::int32_t width) { return 2 * chromaSamples(width); }

  MemoryPixelBuffer(std::int32_t width, std::int32_t height)
      : width_(width),
        height_(height),
        stride_((chromaRowBytes(width) + kAlignment - 1) / kAlignment * kAlignment),
        luma_(stride_ * static_cast<std::size_t>(height)),
        chroma_(stride_ * chromaSamples(height), kNoColour) {}

  const std::int32_t width_;
  const std::int32_t height_;
  const std::size_t stride_;
  std::vector<std::uint8_t> luma_;
  std::vector<std::uint8_t> chroma_;
  PictureColour colour_;
};

}  // namespace zel::platform
