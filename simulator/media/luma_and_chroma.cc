#include "simulator/media/luma_and_chroma.h"

#include <algorithm>
#include <cstdint>

namespace zel::simulator {
namespace {

// In 65536ths.
constexpr int kLuma[] = {19595, 38470, 7471};   // 0.299, 0.587, 0.114
constexpr int kCb[] = {-11059, -21709, 32768};  // -0.168736, -0.331264, 0.5
constexpr int kCr[] = {32768, -27439, -5329};   // 0.5, -0.418688, -0.081312
constexpr int kHalf = 1 << 15;

int weighted(const int (&weights)[3], const int* rgb) {
  return weights[0] * rgb[0] + weights[1] * rgb[1] + weights[2] * rgb[2];
}

std::uint8_t lumaOf(const std::uint8_t* pixel) {
  const int rgb[] = {pixel[0], pixel[1], pixel[2]};
  return static_cast<std::uint8_t>((weighted(kLuma, rgb) + kHalf) >> 16);
}

// rgb: the sums of four pixels.
std::uint8_t chromaOf(const int (&weights)[3], const int* rgb) {
  return static_cast<std::uint8_t>(std::min((weighted(weights, rgb) + 4 * (kHalf + (128 << 16))) >> 18, 255));
}

}  // namespace

void convert(const Picture& picture, AVFrame& frame) {
  const auto pixelAt = [&picture](int x, int y) { return picture.rgb.data() + indexOf(picture, x, y); };
  for (int y = 0; y < picture.height; ++y) {
    std::uint8_t* const luma = frame.data[0] + std::ptrdiff_t{y} * frame.linesize[0];
    const std::uint8_t* pixel = pixelAt(0, y);
    for (int x = 0; x < picture.width; ++x, pixel += 3) luma[x] = lumaOf(pixel);
  }
  for (int y = 0; y < picture.height / 2; ++y) {
    std::uint8_t* const cb = frame.data[1] + std::ptrdiff_t{y} * frame.linesize[1];
    std::uint8_t* const cr = frame.data[2] + std::ptrdiff_t{y} * frame.linesize[2];
    const std::uint8_t *upper = pixelAt(0, 2 * y), *lower = pixelAt(0, 2 * y + 1);
    for (int x = 0; x < picture.width / 2; ++x, upper += 6, lower += 6) {
      int rgb[3];
      for (int i = 0; i < 3; ++i) rgb[i] = upper[i] + upper[i + 3] + lower[i] + lower[i + 3];
      cb[x] = chromaOf(kCb, rgb);
      cr[x] = chromaOf(kCr, rgb);
    }
  }
}

}  // namespace zel::simulator
