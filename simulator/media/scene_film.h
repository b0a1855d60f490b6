#pragma once

#include <cstddef>
#include <optional>

#include "platform/ffmpeg/libav.h"
#include "simulator/fisheye.h"
#include "simulator/media/annex_b.h"
#include "simulator/media/grain.h"
#include "simulator/media/preview_format.h"
#include "simulator/scene.h"

namespace zel::simulator {

// The camera's view of the moving scene as H.264: both lenses' circles, full range, a key picture with its parameter
// sets each second, start codes of four bytes, no reordering.
// Thread: one at a time.
class SceneFilm {
 public:
  // The map of the lenses is built here, which takes longer than a picture. The width is a multiple of 4.
  explicit SceneFilm(const PreviewFormat& format);

  bool ok() const { return encoder_ != nullptr; }  // false where FFmpeg has no libx264

  // The next picture; its time is its number divided by the rate.
  // Errors: a picture without bytes.
  VideoPicture next();

 private:
  void see();
  platform::FramePtr view() const;
  void addGrain(AVFrame& frame) const;

  const PreviewFormat format_;
  const Scene scene_;
  const FisheyeProjector lenses_;
  const FisheyeProjector::Rows moving_;  // the rows of the view in which anything moves
  const platform::CodecContextPtr encoder_;
  std::optional<Grain> grain_;
  Picture seen_;
  std::int64_t number_ = 0;
};

}  // namespace zel::simulator
