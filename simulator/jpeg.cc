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
constexpr std::int64_t kMostPixels = 100'000'000;  // limits the memory that a damaged header can cause

struct Destroy {
  void operator()(void* handle) const { tjDestroy(handle); }
};
using Handle = std::unique_ptr<void, Destroy>;

bool fits(const Picture& picture) {
  return picture.width > 0 && picture.width <= kLongestSide && picture.height > 0 && picture.height <= kLongestSide &&
         picture.rgb.size() == byteCount(picture.width, picture.height);
}

std::optional<Picture> emptyPictureFor(void* decoder, std::span<const std::uint8_t> file) {
  int width = 0, height = 0, subsampling = 0, colours = 0;
  if (tjDecompressHeader3(decoder, file.data(), file.size(), &width, &height, &subsampling, &colours) != 0)
    return std::nullopt;
  if (width <= 0 || height <= 0 || std::int64_t{width} * height > kMostPixels) return std::nullopt;
  return blackPicture(width, height);
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

std::optional<Picture> decodeJpeg(std::span<const std::uint8_t> file) {
  const Handle decoder(tjInitDecompress());
  if (!decoder || file.empty()) return std::nullopt;
  std::optional<Picture> picture = emptyPictureFor(decoder.get(), file);
  if (picture && tjDecompress2(decoder.get(), file.data(), file.size(), picture->rgb.data(), picture->width, 0,
                               picture->height, TJPF_RGB, 0) != 0)
    return std::nullopt;
  return picture;
}

Picture exposed(const Picture& picture, double stops) {
  std::array<std::uint8_t, 256> table;
  for (std::size_t value = 0; value < table.size(); ++value) table[value] = exposedValue(value, std::exp2(stops));
  Picture result = picture;
  for (std::uint8_t& value : result.rgb) value = table[value];
  return result;
}

}  // namespace zel::simulator
