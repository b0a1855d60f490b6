#include "platform/ffmpeg/matrix_conversion.h"

#include <algorithm>
#include <cmath>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

namespace zel::platform {
namespace {

// The converted pair of chroma samples, and the change of the luma samples that belong to it.
struct ChromaStep {
  double luma = 0, cb = 0, cr = 0;
};

ChromaStep stepOf(ColourMatrix from, ColourMatrix to, double cb, double cr) {
  const ColourDifferences above = differencesOf(from, cb, cr);
  const LumaShares share = lumaSharesOf(to);
  const double luma = share.red * above.red + (1 - share.red - share.blue) * above.green + share.blue * above.blue;
  return {luma, 128 + (above.blue - luma) / (2 * (1 - share.blue)), 128 + (above.red - luma) / (2 * (1 - share.red))};
}

std::uint8_t byteOf(double value) { return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L)); }

// The pixels of a pair of chroma samples: two by two, fewer at an odd edge.
void raiseLuma(const PixelPlane& from, MemoryPixelBuffer& to, std::size_t column, std::size_t row, double by) {
  for (std::size_t y = 2 * row; y < std::min(2 * row + 2, to.luma().rows); ++y) {
    const auto into = to.lumaRow(y);
    for (std::size_t x = 2 * column; x < std::min(2 * column + 2, into.size()); ++x)
      into[x] = byteOf(from.data[y * from.stride + x] + by);
  }
}

}  // namespace

PixelBufferRef inMatrix(const PixelBufferRef& picture, ColourMatrix matrix) {
  const PictureColour colour = picture->colour();
  if (colour.matrix == matrix) return picture;
  const auto converted = MemoryPixelBuffer::create(picture->width(), picture->height());
  if (!converted) return nullptr;
  converted->setColour({matrix, colour.primaries, colour.transfer});
  const PixelPlane luma = picture->luma(), chroma = picture->chroma();
  for (std::size_t y = 0; y < converted->chroma().rows; ++y) {
    const std::uint8_t* from = chroma.data + y * chroma.stride;
    const auto to = converted->chromaRow(y);
    for (std::size_t x = 0; x < to.size() / 2; ++x) {
      const ChromaStep step = stepOf(colour.matrix, matrix, from[2 * x], from[2 * x + 1]);
      to[2 * x] = byteOf(step.cb);
      to[2 * x + 1] = byteOf(step.cr);
      raiseLuma(luma, *converted, x, y, step.luma);
    }
  }
  return converted;
}

}  // namespace zel::platform
