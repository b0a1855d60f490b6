#include "platform/render/fringe_filter.h"

#include <algorithm>

namespace zel::render {
namespace {

constexpr std::size_t kReach = 3;  // chroma samples in each direction
constexpr int kBright = 200, kSaturated = 240;

void takeLarger(std::vector<std::uint8_t>& into, const std::uint8_t* row) {
  std::uint8_t* most = into.data();
  const std::size_t count = into.size();
  for (std::size_t i = 0; i < count; ++i) most[i] = std::max(most[i], row[i]);
}

// The brightest pixel in each column of the rows around the chroma row.
void collectColumns(const OutputPicture& picture, std::size_t row, std::size_t height,
                    std::vector<std::uint8_t>& into) {
  const std::size_t first = row > kReach ? 2 * (row - kReach) : 0;
  const std::size_t end = std::min(height, 2 * (row + kReach + 1));
  std::copy_n(picture.luma + first * picture.lumaStride, into.size(), into.begin());
  for (std::size_t at = first + 1; at < end; ++at) takeLarger(into, picture.luma + at * picture.lumaStride);
}

// The picture wraps around at its edges.
void collectSamples(const std::vector<std::uint8_t>& columns, std::vector<std::uint8_t>& into) {
  const std::size_t samples = columns.size() / 2;
  const auto at = [&](std::size_t sample) { return std::max(columns[2 * sample], columns[2 * sample + 1]); };
  for (std::size_t i = 0; i < samples; ++i) into[kReach + i] = at(i);
  for (std::size_t i = 0; i < kReach; ++i) {
    into[i] = at((samples * kReach + i - kReach) % samples);
    into[kReach + samples + i] = at(i % samples);
  }
  for (std::size_t i = 0; i < samples; ++i) {
    for (std::size_t aside = 1; aside <= 2 * kReach; ++aside) into[i] = std::max(into[i], into[i + aside]);
  }
}

int cleaned(int colour, int purple, int strength) { return colour - (purple * strength + 128) / 256; }

}  // namespace

FringeFilter::FringeFilter(PictureSize output, std::size_t workers)
    : width_(static_cast<std::size_t>(output.width)), height_(static_cast<std::size_t>(output.height)) {
  scratch_.assign(workers, {std::vector<std::uint8_t>(width_), std::vector<std::uint8_t>(width_ / 2 + 2 * kReach)});
}

void FringeFilter::filterRow(const OutputPicture& picture, std::size_t row, std::size_t worker) {
  auto& [luma, brightest] = scratch_[worker];
  collectColumns(picture, row, height_, luma);
  collectSamples(luma, brightest);
  std::uint8_t* chroma = picture.chroma + row * picture.chromaStride;
  for (std::size_t i = 0; i < width_ / 2; ++i) {
    const int cb = chroma[2 * i], cr = chroma[2 * i + 1];
    const int purple = std::max(0, std::min(cb, cr) - 128);
    const int strength = std::clamp(brightest[i] - kBright, 0, kSaturated - kBright) * 256 / (kSaturated - kBright);
    chroma[2 * i] = static_cast<std::uint8_t>(cleaned(cb, purple, strength));
    chroma[2 * i + 1] = static_cast<std::uint8_t>(cleaned(cr, purple, strength));
  }
}

}  // namespace zel::render
