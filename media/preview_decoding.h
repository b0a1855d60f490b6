#pragma once

#include <memory>

#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>

#include <ZELTarkaSDK/platform/ports.h>
#include "base/mutex.h"
#include "media/parameter_sets.h"
#include "media/zel_decode_run_loop.h"

namespace zel {

// The parameter sets of the stream, and the decode thread that the first complete pair of them starts. Without decoders
// in the ports nothing is decoded.
// Owner:  as ZELDecodeRunLoop. Keeps the receiver of the stream's pictures until the next reset.
// Thread: any thread.
class PreviewDecoding {
 public:
  explicit PreviewDecoding(const platform::Ports& ports) : threads_(ports.threads), decoders_(ports.videoDecoders) {}

  using Receiver = std::shared_ptr<ZELPixelBufferDataProtocol>;

  // A unit with a parameter set. A PPS with which the sets are complete starts decoding for the stream's receiver,
  // unless it runs already.
  // Errors: sets that make no decoder, or for which no thread can be had, are forgotten, so that the next pair is
  //         tried.
  void offerSps(ByteView unit);
  void offerPps(ByteView unit);

  // The sets of now.
  ParameterSets sets() const;

  // Queues a unit that bears its length; dropped where nothing is being decoded.
  void append(ZELDecodeRunLoop::Unit unit);

  // The oldest picture that was not polled; null when there is none.
  ZELDecodeRunLoop::Picture nextPicture();

  // What has become of all units, those before a reset included.
  PreviewStatistics statistics() const;

  // Forgets the sets and ends the decode thread, without waiting for it. Of the stream that follows, the receiver gets
  // the pictures; null: nobody.
  void reset(Receiver receiver = nullptr);

 private:
  void start(const ParameterSets& used, const Receiver& receiver);
  std::shared_ptr<ZELDecodeRunLoop> decodeRunLoop() const;

  platform::Threads& threads_;
  platform::VideoDecoders* const decoders_;

  mutable Mutex mutex_;
  ParameterSets sets_ ZEL_GUARDED_BY(mutex_);
  Receiver receiver_ ZEL_GUARDED_BY(mutex_);
  std::shared_ptr<ZELDecodeRunLoop> decodeRunLoop_ ZEL_GUARDED_BY(mutex_);
  PreviewStatistics before_ ZEL_GUARDED_BY(mutex_);  // of the loops before this one
};

}  // namespace zel
