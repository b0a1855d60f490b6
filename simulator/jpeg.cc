#include "simulator/jpeg.h"

#include <turbojpeg.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>

namespace zel::simulator {
namespace {

constexpr int kLongestSide = 65500;

struct Destroy {
  void operator()(void* handle) const { tjDestroy(handle); }
};
using Handle = std::unique_ptr<void, Destroy>;

bool fits(const Picture& picture) {
  return picture.width > 0 && picture.width <= kLongestSide && picture.height > 0 && picture.height <= kLongestSide &&
         picture.rgb.size() == byteCount(picture.width, picture.height);
}

double linear(double value) { return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4); }

double curved(double light) { return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055; }

std::uint8_t exposedValue(std::size_t value, double factor) {
  const double light = linear(static_cast<double>(value) / 255) * factor;
  return light < 1 ? static_cast<std::uint8_t>(std::lround(255 * curved(light))) : std::uint8_t{255};
}

}  // namespace

Bytes encodeJpeg(const Picture& picture, int quality) {
  if (!fits(picture)) return {};
  const Handle encoder(tjInitCompress());
  if (!encoder) return {};
  unsigned long size = tjBufSize(picture.width, picture.height, TJSAMP_420);
  Bytes file(size);
  std::uint8_t* into = file.data();
  if (tjCompress2(encoder.get(), picture.rgb.data(), picture.width, 0, picture.height, TJPF_RGB, &into, &size,
                  TJSAMP_420, std::clamp(quality, 1, 100), TJFLAG_NOREALLOC) != 0)
    return {};
  file.resize(size);
  return file;
}

Picture exposed(const Picture& picture, double stops) {
  std::array<std::uint8_t, 256> table;
  for (std::size_t value = 0; value < table.size(); ++value) table[value] = exposedValue(value, std::exp2(stops));
  Picture result = picture;
  for (std::uint8_t& value : result.rgb) value = table[value];
  return result;
}

}  // namespace zel::simulator
