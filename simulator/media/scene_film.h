#pragma once

#include <optional>

#include "platform/ffmpeg/libav.h"
#include "simulator/fisheye.h"
#include "simulator/media/annex_b.h"
#include "simulator/media/grain.h"
#include "simulator/media/preview_format.h"
#include "simulator/scene.h"

namespace zel::simulator {

// The camera's view of the moving scene as H.264: the circles of both lenses, full range, a keyframe with parameter
// sets each second, four-byte start codes, no reordering.
// Thread: one at a time.
class SceneFilm {
 public:
  // Builds the map of the lenses, which takes longer than a picture. The width is a multiple of 4.
  explicit SceneFilm(const PreviewFormat& format);

  bool ok() const { return encoder_ != nullptr; }  // false if FFmpeg has no libx264

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
  const FisheyeProjector::Rows moving_;  // the rows of the view with movement
  const platform::CodecContextPtr encoder_;
  std::optional<Grain> grain_;
  Picture seen_;
  std::int64_t number_ = 0;
};

}  // namespace zel::simulator
