#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <ZELTarkaSDK/platform/pixel_buffer.h>

#include "platform/render/fringe_filter.h"
#include "platform/render/gain_match.h"
#include "platform/render/lens_model.h"
#include "platform/render/nadir_logo.h"
#include "platform/render/picture.h"
#include "platform/render/row_workers.h"
#include "platform/render/stitch_map.h"

namespace zel::render {

struct StitcherOptions {
  int threads = 0;        // for a picture, including the caller's; 0: one for each processor
  bool matchGain = true;  // between the lenses
};

class Stitcher;

// A stitcher, or one sentence that says why there is none.
struct StitcherCreation {
  std::unique_ptr<Stitcher> stitcher;
  std::string fault;
};

// Stitches the pictures of the camera's two lenses to one equirectangular picture.
//
// Everything that depends only on the sizes is computed at the first picture, or in prepare(), and again when the
// source's size changes; after that a picture needs no allocation.
// Thread: one at a time, except setRemovePurple().
class Stitcher {
 public:
  static constexpr int kLargestSide = 16384;

  // Even sides of 2 to kLargestSide.
  static bool canMake(PictureSize output);

  // offset: the camera's lens offset text. output: a size for which canMake() is true.
  // Errors: no stitcher for an invalid offset and for other sizes.
  static StitcherCreation create(std::string_view offset, PictureSize output, const StitcherOptions& options = {});

  // Takes effect at the next picture. See FringeFilter.
  // Thread: any thread.
  void setRemovePurple(bool on) { removePurple_.store(on, std::memory_order_relaxed); }

  // The next picture is unrelated to earlier ones: only its own content determines the gains of the lenses.
  void beginScene() {
    if (prepared_) prepared_->gains.forget();
  }

  // Shows the logo at the nadir, rotated by that many degrees, on pictures with that matrix; see NadirLogo.
  // Errors: false for an unusable logo or an angle that is not finite; then no logo is shown.
  bool setLogo(const LogoImage& logo, double angle, platform::ColourMatrix matrix = platform::ColourMatrix::bt601);
  void clearLogo() { logo_.reset(); }

  // Prepares for pictures of this size, so that the first one is not delayed.
  // Errors: false for sides below kSmallestSource or above kLargestSide.
  static constexpr int kSmallestSource = 4;
  bool prepare(PictureSize source);

  // Fills the whole output.
  // Errors: false, and nothing is written, for a source without pixels, with planes smaller than its size says, or of a
  //         size that prepare() refuses, and for an output without planes or with too short rows.
  [[nodiscard]] bool stitch(const platform::PixelBuffer& source, const OutputPicture& output);

  PictureSize size() const { return output_; }
  std::size_t threads() const { return workers_.count(); }
  std::size_t mapBytes() const { return prepared_ ? byteCount(prepared_->map) : 0; }

 private:
  // The data that depends on the source's size.
  struct Prepared {
    PictureSize source;
    StitchMap map;
    GainMatch gains;
  };
  struct Sources {
    SourcePlane luma, chroma;
  };

  Stitcher(LensModel model, PictureSize output, const StitcherOptions& options);
  static std::optional<Sources> sourcesOf(const platform::PixelBuffer& picture);
  bool takes(const OutputPicture& output) const;
  void stitchTile(const Sources& sources, const LensGains& gains, std::size_t tile, const OutputPicture& output) const;
  void filterBand(std::size_t band, std::size_t worker, const OutputPicture& output);
  void drawLogo(const OutputPicture& output) const;

  const LensModel model_;
  const PictureSize output_;
  const bool matchGain_;
  std::atomic<bool> removePurple_{false};
  std::optional<Prepared> prepared_;
  std::optional<NadirLogo> logo_;
  RowWorkers workers_;
  FringeFilter fringes_;
};

}  // namespace zel::render
