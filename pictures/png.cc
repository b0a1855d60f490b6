#include <ZELTarkaSDK/PictureFile.h>

#include <png.h>

#include <cstddef>
#include <utility>

#include "pictures/rgb_picture.h"

namespace zel {
namespace {

constexpr png_uint_32 kLargestSide = 8192;

}  // namespace

std::optional<platform::RgbaImage> imageOfPng(std::span<const std::uint8_t> file, std::string& error) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  error = "no PNG picture";
  if (png_image_begin_read_from_memory(&image, file.data(), file.size()) == 0) return std::nullopt;
  image.format = PNG_FORMAT_RGBA;
  if (image.width > kLargestSide || image.height > kLargestSide) {
    png_image_free(&image);
    error = "larger than 8192 x 8192 pixels";
    return std::nullopt;
  }
  std::vector<std::uint8_t> pixels(PNG_IMAGE_SIZE(image));
  if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0) return std::nullopt;
  error.clear();
  return platform::RgbaImage{static_cast<std::int32_t>(image.width), static_cast<std::int32_t>(image.height),
                             std::move(pixels)};
}

std::optional<std::vector<std::uint8_t>> pngOf(const platform::PixelBuffer& picture) {
  const std::vector<std::uint8_t> colours = bgraOf(picture);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.width());
  image.height = static_cast<png_uint_32>(picture.height());
  image.format = PNG_FORMAT_BGRA;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::vector<std::uint8_t> bytes(size);
  if (png_image_write_to_memory(&image, bytes.data(), &size, 0, colours.data(), 0, nullptr) == 0) return std::nullopt;
  bytes.resize(size);
  return bytes;
}

}  // namespace zel
