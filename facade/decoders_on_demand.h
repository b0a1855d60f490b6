#pragma once

#include <ZELTarkaSDK/platform/forwarding.h>

#include <atomic>
#include <memory>
#include <utility>

namespace zel {

// Decoders that rest while nobody looks at the pictures, since decoding takes most of a processor. When somebody does,
// they go on with the next key picture.
//
// Owner:  the wrapped decoders must outlive the object.
// Thread: any thread.
class DecodersOnDemand final : public platform::ForwardingVideoDecoders {
 public:
  using ForwardingVideoDecoders::ForwardingVideoDecoders;

  // Whoever looks says so, and says when it no longer does.
  void look() { ++*lookers_; }
  void lookAway() { --*lookers_; }

  platform::DecoderCreation create(platform::VideoDecoder::Bytes sps, platform::VideoDecoder::Bytes pps) override;

 private:
  class Decoder;
  // Shared with the sessions, since the decode thread of a destroyed player may still run.
  const std::shared_ptr<std::atomic<int>> lookers_ = std::make_shared<std::atomic<int>>(0);
};

}  // namespace zel
