#pragma once

#include <png.h>

#include <optional>
#include <string>

#include "simulator/picture.h"

namespace zel::test {

// A PNG file's picture; nothing where it is none.
inline std::optional<simulator::Picture> pngIn(const std::string& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, path.c_str()) == 0) return std::nullopt;
  image.format = PNG_FORMAT_RGB;
  auto picture = simulator::blackPicture(static_cast<int>(image.width), static_cast<int>(image.height));
  if (png_image_finish_read(&image, nullptr, picture.rgb.data(), 0, nullptr) == 0) return std::nullopt;
  return picture;
}

}  // namespace zel::test
