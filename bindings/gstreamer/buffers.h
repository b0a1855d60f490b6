#pragma once

#include <ZELTarkaSDK/MediaPacket.h>
#include <ZELTarkaSDK/platform/pixel_buffer.h>
#include <gst/gst.h>

#include <atomic>
#include <memory>

namespace zel::gst {

// Buffers of a packet's bytes and of a picture's planes, without a copy.
//
// Owner:  the caller.
GstBuffer* bufferOf(const ZELData& bytes);

// Whoever reads a picture may keep it for long, and its decoder and its renderer have few: from kMostWrapped on that
// are still in use, a picture is copied.
class PictureBuffers {
 public:
  static constexpr int kMostWrapped = 6;

  // knowsStrides: whoever gets it reads GstVideoMeta; otherwise its rows are laid out as the caps alone imply.
  //
  // Errors: null where there is no memory.
  GstBuffer* bufferOf(const platform::PixelBufferRef& picture, bool knowsStrides);

 private:
  const std::shared_ptr<std::atomic<int>> wrapped_ = std::make_shared<std::atomic<int>>(0);
};

}  // namespace zel::gst
