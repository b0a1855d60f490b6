#include "bindings/c/stitching.h"

#include <ZELTarkaSDK/CameraStream.h>

#include <cstddef>

#include "bindings/c/failure.h"

namespace zel::c {
namespace {

constexpr std::int32_t kLargestLogo = 8192;

bool isSideOfLogo(std::int32_t side) { return side > 0 && side <= kLargestLogo; }
bool isSideOfPictures(std::int32_t side) { return side > 0 && side % 2 == 0; }

}  // namespace

std::pair<std::int32_t, std::int32_t> stitchedSize(std::int32_t width, std::int32_t height) {
  if (width == 0 && height == 0) return {StitchedPictures{}.width, StitchedPictures{}.height};
  if (!isSideOfPictures(width) || !isSideOfPictures(height)) refuse("stitched pictures have two even sides above 0");
  return {width, height};
}

std::optional<platform::RgbaImage> logoOf(const std::uint8_t* pixels, std::int32_t width, std::int32_t height) {
  if (pixels == nullptr) return std::nullopt;
  if (!isSideOfLogo(width) || !isSideOfLogo(height)) refuse("the logo has no size, or one above 8192");
  const std::size_t length = 4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  return platform::RgbaImage{width, height, {pixels, pixels + length}};
}

}  // namespace zel::c
