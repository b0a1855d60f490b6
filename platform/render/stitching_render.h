#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include <ZELTarkaSDK/platform/media_library.h>
#include "platform/render/fault_teller.h"
#include "platform/render/nadir_logo.h"
#include "platform/render/picture_pool.h"
#include "platform/render/stitcher.h"

namespace zel::render {

// The stitcher behind the renderer's port. There is no graphics context to make current.
//
// An image has the colours of its picture. Images come from a pool: once it is filled, one costs no allocation. A logo
// that is not usable is not shown.
//
// Units:  at most kMostImages images are in use at a time; where a host keeps more of them, there is none for the next
//         picture.
//
// Errors: no image without an offset that makes sense, for a picture that cannot be stitched (see Stitcher), and where
//         memory ends. Each of these is told once. An offset that finds no memory is told, and std::bad_alloc thrown.
class StitchingRender final : public platform::FlatOffscreenRender {
 public:
  static constexpr std::size_t kMostImages = 16;

  // output must be a size that the stitcher makes.
  StitchingRender(PictureSize output, const StitcherOptions& options, Diagnostics tell);

  void setOffset(std::string_view offset) override;
  // Pictures of a video share the gains of the lenses, which follow slowly; any other picture has its own.
  void setIsRenderVideo(bool isVideo) override { isVideo_ = isVideo; }
  void setLogoAngle(float angle) override;
  void setLogoImage(const std::optional<platform::RgbaImage>& image) override;
  void setRemovePurple(bool on) override { removePurple_.store(on, std::memory_order_relaxed); }
  platform::PixelBufferRef renderVideo(const platform::PixelBufferRef& picture) override;

 private:
  platform::PixelBufferRef stitched(const platform::PixelBuffer& picture);
  void showLogo();
  void tellOfMemory();

  const PictureSize output_;
  const StitcherOptions options_;
  FaultTeller faults_;
  PicturePool pool_;
  std::string offset_;
  std::unique_ptr<Stitcher> stitcher_;  // null without an offset that makes sense
  bool isVideo_ = false;
  std::optional<LogoImage> logo_;
  float logoAngle_ = 0;
  platform::ColourMatrix matrix_ = platform::ColourMatrix::bt601;  // of the last picture
  bool logoIsShown_ = true;  // whether the stitcher knows logo_, its angle and matrix_
  std::atomic<bool> removePurple_{false};
};

}  // namespace zel::render
