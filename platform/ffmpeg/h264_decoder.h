#pragma once

#include <ZELTarkaSDK/platform/video_decoder.h>

namespace zel::platform {

// How the decoder spends processors.
struct LibavDecoderOptions {
  // 1: every unit is decoded in the call that brings it, on the caller's thread, and a picture comes out in the call
  // that
  //    brings its last slice. A picture of one slice cannot be decoded by two threads at once.
  // 2 and more, at most kMostThreads: whole pictures are decoded side by side. Each picture comes out as many pictures
  //    later as there are threads.
  int threads = 1;
};

// H.264 through libavcodec: 8-bit 4:2:0 of every profile, up to kMostPixels a picture.
//
// A stream that declares limited range is stretched to full range; every other one is handed on as it was decoded. A
// picture of which a slice is broken is not shown. Where parameter sets within the stream change the picture's size,
// pictures of the new size follow. A stream that reorders pictures, and whose parameter set does not say how far, is
// found out by its first B slice; from then on as many pictures are held back as its level allows.
// Errors: a stream in another format gives no decoder, and where the parameter set does not tell, no picture. The
//         stage's
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
