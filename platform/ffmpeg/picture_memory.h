#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "platform/ffmpeg/libav.h"

namespace zel::platform {

// The memory of a decoder's pictures, within bounds. A camera can have a picture of tens of megabytes decoded from a
// few bytes, and sixteen of them kept: FFmpeg bounds the size of each alone.
// Owner:  must outlive the contexts that it serves; the pictures may outlive it.
// Thread: any thread.
class PictureMemory {
 public:
  // Units: bytes, of all pictures that anybody holds.
  explicit PictureMemory(std::int64_t most) : most_(most) {}
  PictureMemory(const PictureMemory&) = delete;
  PictureMemory& operator=(const PictureMemory&) = delete;

  // From now on the context's pictures are counted, and one that would be too much fails to be decoded.
  void serve(AVCodecContext& context);

  std::int64_t held() const { return held_->load(); }

 private:
  struct Counted;

  static int take(AVCodecContext* context, AVFrame* frame, int flags);
  static void giveBack(void* counted, std::uint8_t*);
  bool count(AVFrame& frame) const;

  const std::int64_t most_;
  const std::shared_ptr<std::atomic<std::int64_t>> held_ = std::make_shared<std::atomic<std::int64_t>>(0);
};

}  // namespace zel::platform
