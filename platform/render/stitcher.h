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
  int threads = 0;        // that work on a picture, the caller's among them; 0: one a processor
  bool matchGain = true;  // between the lenses
};

class Stitcher;

// A stitcher, or one sentence on why there is none.
struct StitcherCreation {
  std::unique_ptr<Stitcher> stitcher;
  std::string fault;
};

// Makes one equirectangular picture of what the camera's two lenses see.
//
// Everything that depends on the sizes alone is worked out when the first picture comes, or in prepare(), and again
// when the source's size changes; after that a picture takes no allocation.
// Thread: one at a time, but for setRemovePurple().
class Stitcher {
 public:
  static constexpr int kLargestSide = 16384;

  // Even sides of 2 to kLargestSide.
  static bool canMake(PictureSize output);

  // offset: the camera's lens offset text. output: a size that can be made.
  // Errors: no stitcher for an offset that makes no sense and for other sizes.
  static StitcherCreation create(std::string_view offset, PictureSize output, const StitcherOptions& options = {});

  // Any thread; counts from the next picture on. See FringeFilter.
  void setRemovePurple(bool on) { removePurple_.store(on, std::memory_order_relaxed); }

  // The next picture has nothing to do with those before it: what it shows alone tells how bright each lens is.
  void beginScene() {
    if (prepared_) prepared_->gains.forget();
  }

  // Shows the logo at the nadir, turned by so many degrees, on pictures of that matrix; see NadirLogo.
  // Errors: false for a logo that is not usable or an angle that is no finite number; then there is no logo.
  bool setLogo(const LogoImage& logo, double angle, platform::ColourMatrix matrix = platform::ColourMatrix::bt601);
  void clearLogo() { logo_.reset(); }

  // Gets ready for pictures of this size, so that the first one does not wait.
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
  // What depends on the source's size.
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
