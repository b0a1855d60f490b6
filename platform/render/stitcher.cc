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

// Nothing but the plane's own bytes is read if this holds.
bool holds(const platform::PixelPlane& plane, std::size_t rowBytes, std::size_t rows) {
  constexpr std::size_t mostBytes = std::numeric_limits<std::int32_t>::max();
  return plane.data != nullptr && plane.rowBytes >= rowBytes && plane.rows >= rows && plane.stride >= plane.rowBytes &&
         plane.stride <= mostBytes / rows;
}

SourcePlane sourceOf(const platform::PixelPlane& plane, int width, int height) {
  return {plane.data, static_cast<std::int32_t>(plane.stride), width, height};
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
void stitchRow(const Band& band, std::size_t row, const PlaneShape& plane, const SourcePlane& source,
               const LensGains& gains, std::uint8_t* out) {
  std::size_t column = 0;
  for (std::size_t index = band.rowRuns[row]; index < band.rowRuns[row + 1]; ++index) {
    const Run& run = band.runs[index];
    const std::size_t pixels = std::min(plane.width - column, run.count * plane.segmentPixels);
    const RunShape shape{plane.segmentPixels, pixels};
    std::uint8_t* at = out + column * Kernels::kPixelBytes;
    if (run.kind == RunKind::blend) {
      Kernels::kBoth(source, std::span(band.blends).subspan(run.first, run.count), shape, gains, at);
    } else {
      const std::uint16_t gain = gains.lens[run.kind == RunKind::lens0 ? 0 : 1];
      Kernels::kOne(source, std::span(band.segments).subspan(run.first, run.count), shape, gain, at);
    }
    column += pixels;
  }
}

}  // namespace

StitcherCreation Stitcher::create(std::string_view offset, PictureSize output, const StitcherOptions& options) {
  if (!isOutputSide(output.width) || !isOutputSide(output.height))
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

bool Stitcher::setLogo(const LogoImage& logo, double angle) {
  logo_.reset();
  if (!isUsable(logo) || !std::isfinite(angle)) return false;
  logo_.emplace(logo, angle, output_);
  return true;
}

bool Stitcher::prepare(PictureSize source) {
  if (!isSourceSide(source.width) || !isSourceSide(source.height)) return false;
  if (prepared_ && prepared_->source == source) return true;
  std::vector<LensView> views;
  for (const Lens& lens : model_.lenses) views.emplace_back(model_, lens, source.width, source.height);
  prepared_.reset();  // the old map's memory goes before the new one's comes
  prepared_.emplace(Prepared{source, buildStitchMap(views, model_.fieldOfView, output_, workers_),
                             GainMatch(views, model_.fieldOfView, source.width, source.height)});
  return true;
}

bool Stitcher::stitch(const platform::PixelBuffer& source, const OutputPicture& output) {
  if (!takes(output) || !isSourceSide(source.width()) || !isSourceSide(source.height())) return false;
  const auto sources = sourcesOf(source);
  if (!sources || !prepare({source.width(), source.height()})) return false;
  const LensGains gains = matchGain_ ? prepared_->gains.next(sources->luma) : LensGains{};
  const std::size_t bands = prepared_->map.lumaBands.size();
  workers_.run(bands, [&](std::size_t band, std::size_t) { stitchBand(*sources, gains, band, output); });
  if (removePurple_.load(std::memory_order_relaxed))
    workers_.run(bands, [&](std::size_t band, std::size_t worker) { filterBand(band, worker, output); });
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

void Stitcher::stitchBand(const Sources& sources, const LensGains& gains, std::size_t band,
                          const OutputPicture& output) const {
  const Band& luma = prepared_->map.lumaBands[band];
  for (std::size_t row = 0; row < luma.rows; ++row) {
    stitchRow<LumaKernels>(luma, row, prepared_->map.luma, sources.luma, gains,
                           output.luma + (luma.firstRow + row) * output.lumaStride);
  }
  const Band& chroma = prepared_->map.chromaBands[band];
  for (std::size_t row = 0; row < chroma.rows; ++row) {
    stitchRow<ChromaKernels>(chroma, row, prepared_->map.chroma, sources.chroma, gains,
                             output.chroma + (chroma.firstRow + row) * output.chromaStride);
  }
}

void Stitcher::filterBand(std::size_t band, std::size_t worker, const OutputPicture& output) {
  const Band& chroma = prepared_->map.chromaBands[band];
  for (std::size_t row = 0; row < chroma.rows; ++row) fringes_.filterRow(output, chroma.firstRow + row, worker);
}

void Stitcher::drawLogo(const OutputPicture& output) const {
  const auto rows = static_cast<std::size_t>(output_.height);
  for (std::size_t row = logo_->firstRow(1); row < rows; ++row)
    logo_->drawLuma(row, output.luma + row * output.lumaStride);
  for (std::size_t row = logo_->firstRow(2); row < rows / 2; ++row)
    logo_->drawChroma(row, output.chroma + row * output.chromaStride);
}

}  // namespace zel::render
