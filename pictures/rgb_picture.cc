#include "pictures/rgb_picture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zel {
namespace {

constexpr std::size_t kBytesAPixel = 4;

std::uint8_t byteOf(long value) { return static_cast<std::uint8_t>(std::clamp(value, 0L, 255L)); }

// The differences of blue, green and red from luma. Luma is an integer, so rounding them rounds the sums.
struct Above {
  long blue = 0, green = 0, red = 0;
};

Above aboveLuma(platform::ColourMatrix matrix, std::uint8_t cb, std::uint8_t cr) {
  const platform::ColourDifferences above = platform::differencesOf(matrix, cb, cr);
  return {std::lround(above.blue), std::lround(above.green), std::lround(above.red)};
}

void writePixel(std::uint8_t* into, long luma, const Above& above) {
  into[0] = byteOf(luma + above.blue);
  into[1] = byteOf(luma + above.green);
  into[2] = byteOf(luma + above.red);
  into[3] = 255;
}

// A sum of pixels.
struct Light {
  double blue = 0, green = 0, red = 0, pixels = 0;
};

struct Source {
  const std::uint8_t* pixels;
  std::size_t width, height;

  // The sum in a square, clipped to the picture.
  Light sum(std::size_t left, std::size_t top, std::size_t side) const {
    Light light;
    for (std::size_t y = top; y < std::min(top + side, height); ++y) {
      for (std::size_t x = left; x < std::min(left + side, width); ++x) {
        const std::uint8_t* pixel = pixels + kBytesAPixel * (y * width + x);
        light.blue += pixel[0];
        light.green += pixel[1];
        light.red += pixel[2];
        ++light.pixels;
      }
    }
    return light;
  }
};

double lumaOf(const Light& light, const platform::LumaShares& share) {
  return (share.red * light.red + (1 - share.red - share.blue) * light.green + share.blue * light.blue) / light.pixels;
}

}  // namespace

std::vector<std::uint8_t> bgraOf(const platform::PixelBuffer& picture) {
  const auto width = static_cast<std::size_t>(picture.width()), height = static_cast<std::size_t>(picture.height());
  const platform::PixelPlane luma = picture.luma(), chroma = picture.chroma();
  const platform::ColourMatrix matrix = picture.colour().matrix;
  std::vector<std::uint8_t> pixels(kBytesAPixel * width * height);
  std::vector<Above> above((width + 1) / 2);  // of two rows
  std::uint8_t* into = pixels.data();
  for (std::size_t y = 0; y < height; ++y) {
    const std::uint8_t* colour = chroma.data + y / 2 * chroma.stride;
    for (std::size_t x = 0; y % 2 == 0 && x < above.size(); ++x)
      above[x] = aboveLuma(matrix, colour[2 * x], colour[2 * x + 1]);
    const std::uint8_t* light = luma.data + y * luma.stride;
    for (std::size_t x = 0; x < width; ++x, into += kBytesAPixel) writePixel(into, light[x], above[x / 2]);
  }
  return pixels;
}

void setBgra(std::span<const std::uint8_t> pixels, platform::MemoryPixelBuffer& into) {
  const Source source{pixels.data(), static_cast<std::size_t>(into.width()), static_cast<std::size_t>(into.height())};
  const platform::LumaShares share = platform::lumaSharesOf(into.colour().matrix);
  for (std::size_t y = 0; y < source.height; ++y) {
    const auto row = into.lumaRow(y);
    for (std::size_t x = 0; x < source.width; ++x) row[x] = byteOf(std::lround(lumaOf(source.sum(x, y, 1), share)));
  }
  for (std::size_t y = 0; y < source.height; y += 2) {
    const auto row = into.chromaRow(y / 2);
    for (std::size_t x = 0; x < source.width; x += 2) {
      const Light light = source.sum(x, y, 2);
      const double luma = lumaOf(light, share);
      row[x] = byteOf(std::lround(128 + (light.blue / light.pixels - luma) / (2 * (1 - share.blue))));
      row[x + 1] = byteOf(std::lround(128 + (light.red / light.pixels - luma) / (2 * (1 - share.red))));
    }
  }
}

}  // namespace zel
