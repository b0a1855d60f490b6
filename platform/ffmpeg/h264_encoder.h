#pragma once

#include <ZELTarkaSDK/platform/video_encoder.h>

namespace zel::platform {

struct LibavEncoderOptions {
  // x264's preset, ultrafast to medium: each step gives better pictures of the same size, and takes longer.
  const char* preset = "ultrafast";

  // 1: every unit comes out in the call that takes its picture.
  // 2 and more, at most kMostThreads: pictures are encoded side by side, and each comes out as many pictures later as
  //    there are threads besides the first.
  int threads = 1;
};

// H.264 through libavcodec and libx264, for live streams: no lookahead, no reordering, one slice and so one NAL unit
// for each picture, a keyframe each second. Parameter sets are delivered once, before the first unit; access unit
// delimiters and SEI are left out.
//
// Pictures are not copied. The stream declares full range and the colours of its first picture, completed where
// unspecified; a later picture with another matrix is converted to the first one's.
//
// Units:  the bitrate in bits a second, not exceeded for longer than a second.
//
// Thread: both callbacks run on the thread that calls encodeImage(), before it returns.
//
// Errors: open() is false for odd sides and those below kSmallestSide or above kLargestSide, for more pixels than
//         kMostPixels, for a bitrate below kLeastBitrate, for a rate below 1 or above kMostFps, and without libx264.
//         encodeImage() is false for null and for a picture of another size.
class LibavVideoEncoders final : public VideoEncoders {
 public:
  static constexpr int kMostThreads = 16;
  static constexpr std::int32_t kSmallestSide = 16;
  static constexpr std::int32_t kLargestSide = 16384;
  static constexpr std::int64_t kMostPixels = 139264 * 256;  // of the highest level, 6.2
  static constexpr std::int32_t kLeastBitrate = 1000;
  static constexpr std::int32_t kMostFps = 300;

  explicit LibavVideoEncoders(LibavEncoderOptions options = {}) : options_(options) {}

  std::unique_ptr<VideoEncoder> create(const VideoEncoderSettings& settings) override;

 private:
  const LibavEncoderOptions options_;
};

}  // namespace zel::platform
