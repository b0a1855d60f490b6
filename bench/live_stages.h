#pragma once

#include <cstdint>
#include <memory>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>
#include <ZELTarkaSDK/platform/video_decoder.h>
#include <ZELTarkaSDK/platform/video_encoder.h>

#include "bench/film.h"
#include "platform/render/stitcher.h"

namespace zel::bench {

// Milliseconds a picture, best of three turns: each stage alone, with nothing around it. The decoder and the encoder
// have one thread, the stitcher all.
struct StageCosts {
  double decode = 0, stitch = 0, encode = 0;
};
StageCosts measureStages(const Film& film, int width, int bitrate);

// All stages, called one after the other on one thread.
class BareStages {
 public:
  BareStages(const Film& film, int width, int bitrate);

  // Takes a picture of the film through all of them. The first must be a key picture.
  void run(std::size_t picture);

 private:
  const Film& film_;
  const std::unique_ptr<platform::VideoDecoder> decoder_;
  const std::unique_ptr<platform::VideoEncoder> encoder_;
  const std::shared_ptr<platform::MemoryPixelBuffer> panorama_;
  std::unique_ptr<render::Stitcher> stitcher_;  // made with the first picture
  std::int64_t pictures_ = 0;
};

}  // namespace zel::bench
