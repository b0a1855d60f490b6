#pragma once

#include <ZELTarkaSDK/platform/video_decoder.h>

namespace zel::platform {

// How the decoder spends processors and memory.
struct LibavDecoderOptions {
  // 1: every unit is decoded in the call that brings it, on the caller's thread, and a picture comes out in the call
  // that
  //    brings its last slice. A picture of one slice cannot be decoded by two threads at once.
  // 2 and more, at most kMostThreads: whole pictures are decoded side by side. Each picture comes out as many pictures
  //    later as there are threads.
  int threads = 1;

  // What the pictures of one decoder may take together, those that it refers to and those that somebody still holds. A
  // picture beyond that is not decoded. Five of 7680x3840.
  //
  // Units: bytes.
  std::int64_t mostHeld = std::int64_t{232} << 20;
};

// H.264 through libavcodec: 8-bit 4:2:0 of every profile, up to kMostPixels a picture.
//
// A stream that declares limited range is converted to full range; any other is passed on as decoded. A picture with a
// broken slice is not returned. Parameter sets within the stream may change the picture's size. Reordering that the SPS
// does not declare is detected at the first B slice; from then on as many pictures are held back as the level allows.
// Errors: a stream in another format gives no decoder, or, if the SPS does not declare it, no picture. The stage's
//         status is FFmpeg's.
class LibavVideoDecoders final : public VideoDecoders {
 public:
  static constexpr int kMostThreads = 16;
  static constexpr std::int64_t kMostPixels = 8192 * 4608;

  explicit LibavVideoDecoders(LibavDecoderOptions options = {}) : options_(options) {}

  DecoderCreation create(VideoDecoder::Bytes sps, VideoDecoder::Bytes pps) override;

 private:
  const LibavDecoderOptions options_;
};

}  // namespace zel::platform
