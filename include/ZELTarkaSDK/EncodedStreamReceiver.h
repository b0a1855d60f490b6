#pragma once

#include <ZELTarkaSDK/MediaPacket.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// Receives an encoded stream.
//
// Thread: the session thread and the encode thread, one call at a time. A call must not wait, and must not call the
// stream that it comes from.
class ZEL_EXPORT EncodedStreamReceiver {
 public:
  virtual ~EncodedStreamReceiver() = default;

  // What the packets are made of: once, before the first packet, however often the camera connects again.
  virtual void onHeaders(const StreamHeaders& headers) = 0;

  // The next picture or AAC frame. The first packet is a key picture. Times of one track only grow; the two tracks
  // come in the order in which the camera's frames arrive.
  virtual void onPacket(const MediaPacket& packet) = 0;
};

}  // namespace zel
