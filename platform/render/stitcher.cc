#include "platform/render/stitcher.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <utility>

namespace zel::render {
namespace {

bool isOutputSide(int side) { return side >= 2 && side <= Stitcher::kLargestSide && side % 2 == 0; }

bool isSourceSide(int side) { return side >= Stitcher::kSmallestSource && side <= Stitcher::kLargestSide; }

// If true, only the plane's own bytes are read.
bool holds(const platform::PixelPlane& plane, std::size_t rowBytes, std::size_t rows) {
  constexpr std::size_t mostBytes = std::numeric_limits<std::int32_t>::max();
  return plane.data != nullptr && plane.rowBytes >= rowBytes && plane.rows >= rows && plane.stride >= plane.rowBytes &&
         plane.stride <= mostBytes / rows;
}

SourcePlane sourceOf(const platform::PixelPlane& plane, int width, int height) {
  return {plane.data, static_cast<std::int32_t>(plane.stride), width, height};
}

constexpr std::size_t kFilterRows = 16;  // of chroma, in a task

std::size_t filterBands(PictureSize output) {
  return (static_cast<std::size_t>(output.height) / 2 + kFilterRows - 1) / kFilterRows;
}

// One row of a plane, run by run.
struct LumaKernels {
  static constexpr std::size_t kPixelBytes = 1;
  static constexpr auto kOne = stitchLuma;
  static constexpr auto kBoth = stitchLumaBlend;
};
struct ChromaKernels {
  static constexpr std::size_t kPixelBytes = 2;
  static constexpr auto kOne = stitchChroma;
  static constexpr auto kBoth = stitchChromaBlend;
};

template <class Kernels>
void stitchRow(const Tile& tile, std::size_t row, std::size_t segmentPixels, const SourcePlane& source,
               const LensGains& gains, std::uint8_t* out) {
  std::size_t column = 0;
  for (std::size_t index = tile.rowRuns[row]; index < tile.rowRuns[row + 1]; ++index) {
    const Run& run = tile.runs[index];
    const std::size_t pixels = std::min(tile.place.columns - column, run.count * segmentPixels);
    const RunShape shape{segmentPixels, pixels};
    std::uint8_t* at = out + column * Kernels::kPixelBytes;
    if (run.kind == RunKind::blend) {
      Kernels::kBoth(source, std::span(tile.blends).subspan(run.first, run.count), shape, gains, at);
    } else {
      const std::uint16_t gain = gains.lens[run.kind == RunKind::lens0 ? 0 : 1];
      Kernels::kOne(source, std::span(tile.segments).subspan(run.first, run.count), shape, gain, at);
    }
    column += pixels;
  }
}

template <class Kernels>
void stitchPlane(const Tile& tile, const PlaneShape& plane, const SourcePlane& source, const LensGains& gains,
                 std::uint8_t* out, std::size_t stride) {
  std::uint8_t* at = out + tile.place.firstRow * stride + tile.place.firstColumn * Kernels::kPixelBytes;
  for (std::size_t row = 0; row < tile.place.rows; ++row)
    stitchRow<Kernels>(tile, row, plane.segmentPixels, source, gains, at + row * stride);
}

}  // namespace

bool Stitcher::canMake(PictureSize output) { return isOutputSide(output.width) && isOutputSide(output.height); }

StitcherCreation Stitcher::create(std::string_view offset, PictureSize output, const StitcherOptions& options) {
  if (!canMake(output))
    return {nullptr, "stitching: the picture's sides must be even, from 2 to " + std::to_string(kLargestSide)};
  ParsedLensModel parsed = parseLensModel(offset);
  if (!parsed.model) return {nullptr, parsed.fault};
  return {std::unique_ptr<Stitcher>(new Stitcher(std::move(*parsed.model), output, options)), {}};
}

Stitcher::Stitcher(LensModel model, PictureSize output, const StitcherOptions& options)
    : model_(std::move(model)),
      output_(output),
      matchGain_(options.matchGain),
      workers_(options.threads),
      fringes_(output, workers_.count()) {}

bool Stitcher::setLogo(const LogoImage& logo, double angle, platform::ColourMatrix matrix) {
  logo_.reset();
  if (!isUsable(logo) || !std::isfinite(angle)) return false;
  logo_.emplace(logo, angle, output_, matrix);
  return true;
}

bool Stitcher::prepare(PictureSize source) {
  if (!isSourceSide(source.width) || !isSourceSide(source.height)) return false;
  if (prepared_ && prepared_->source == source) return true;
  std::vector<LensView> views;
  for (const Lens& lens : model_.lenses) views.emplace_back(model_, lens, source.width, source.height);
  prepared_.reset();  // the old map is freed before the new one is allocated
  prepared_.emplace(Prepared{source, buildStitchMap(views, model_.fieldOfView, output_, workers_),
                             GainMatch(views, model_.fieldOfView, source.width, source.height)});
  return true;
}

bool Stitcher::stitch(const platform::PixelBuffer& source, const OutputPicture& output) {
  if (!takes(output) || !isSourceSide(source.width()) || !isSourceSide(source.height())) return false;
  const auto sources = sourcesOf(source);
  if (!sources || !prepare({source.width(), source.height()})) return false;
  const LensGains gains = matchGain_ ? prepared_->gains.next(sources->luma) : LensGains{};
  const std::size_t tiles = prepared_->map.lumaTiles.size();
  workers_.run(tiles, [&](std::size_t tile, std::size_t) { stitchTile(*sources, gains, tile, output); });
  if (removePurple_.load(std::memory_order_relaxed))
    workers_.run(filterBands(output_), [&](std::size_t band, std::size_t worker) { filterBand(band, worker, output); });
  if (logo_) drawLogo(output);
  return true;
}

std::optional<Stitcher::Sources> Stitcher::sourcesOf(const platform::PixelBuffer& picture) {
  const auto width = static_cast<std::size_t>(picture.width()), height = static_cast<std::size_t>(picture.height());
  const std::size_t halfWidth = (width + 1) / 2, halfHeight = (height + 1) / 2;
  const platform::PixelPlane luma = picture.luma(), chroma = picture.chroma();
  if (!holds(luma, width, height) || !holds(chroma, 2 * halfWidth, halfHeight)) return std::nullopt;
  return Sources{sourceOf(luma, picture.width(), picture.height()),
                 sourceOf(chroma, static_cast<int>(halfWidth), static_cast<int>(halfHeight))};
}

bool Stitcher::takes(const OutputPicture& output) const {
  const auto rowBytes = static_cast<std::size_t>(output_.width);
  return output.luma != nullptr && output.chroma != nullptr && output.lumaStride >= rowBytes &&
         output.chromaStride >= rowBytes;
}

void Stitcher::stitchTile(const Sources& sources, const LensGains& gains, std::size_t tile,
                          const OutputPicture& output) const {
  const StitchMap& map = prepared_->map;
  stitchPlane<LumaKernels>(map.lumaTiles[tile], map.luma, sources.luma, gains, output.luma, output.lumaStride);
  stitchPlane<ChromaKernels>(map.chromaTiles[tile], map.chroma, sources.chroma, gains, output.chroma,
                             output.chromaStride);
}

void Stitcher::filterBand(std::size_t band, std::size_t worker, const OutputPicture& output) {
  const std::size_t first = band * kFilterRows, rows = static_cast<std::size_t>(output_.height) / 2;
  for (std::size_t row = first; row < std::min(first + kFilterRows, rows); ++row)
    fringes_.filterRow(output, row, worker);
}

void Stitcher::drawLogo(const OutputPicture& output) const {
  const auto rows = static_cast<std::size_t>(output_.height);
  for (std::size_t row = logo_->firstRow(1); row < rows; ++row)
    logo_->drawLuma(row, output.luma + row * output.lumaStride);
  for (std::size_t row = logo_->firstRow(2); row < rows / 2; ++row)
    logo_->drawChroma(row, output.chroma + row * output.chromaStride);
}

}  // namespace zel::render
