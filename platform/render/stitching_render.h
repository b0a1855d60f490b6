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

// The renderer port, implemented with the stitcher. It has no graphics context.
//
// An image has the colour description of its picture. Images come from a pool: once it is filled, an image needs no
// allocation. An unusable logo is not shown.
//
// Units:  at most kMostImages images are in use at a time; if a host keeps that many, the next picture gives none.
//
// Errors: no image without a valid offset, for a picture that cannot be stitched (see Stitcher), and when memory runs
//         out. Each of these is reported once. Setting an offset without memory is reported, and throws std::bad_alloc.
class StitchingRender final : public platform::FlatOffscreenRender {
 public:
  static constexpr std::size_t kMostImages = 16;

  // output must be valid for the stitcher.
  StitchingRender(PictureSize output, const StitcherOptions& options, Diagnostics tell);

  void setOffset(std::string_view offset) override;
  // Pictures of a video share the lens gains, which change slowly; any other picture has its own.
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
  std::unique_ptr<Stitcher> stitcher_;  // null without a valid offset
  bool isVideo_ = false;
  std::optional<LogoImage> logo_;
  float logoAngle_ = 0;
  platform::ColourMatrix matrix_ = platform::ColourMatrix::bt601;  // of the last picture
  bool logoIsShown_ = true;  // whether the stitcher has logo_, its angle and matrix_
  std::atomic<bool> removePurple_{false};
};

}  // namespace zel::render
