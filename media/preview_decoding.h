#pragma once

#include <memory>

#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>

#include "media/parameter_sets.h"
#include "media/zel_decode_run_loop.h"
#include "platform/mutex.h"
#include "platform/ports.h"

namespace zel {

// The parameter sets of the stream, and the decode thread that the first complete pair of them starts.
// Owner:  as ZELDecodeRunLoop. Without decoders in the ports nothing is decoded.
// Thread: any thread.
class PreviewDecoding {
 public:
  explicit PreviewDecoding(const platform::Ports& ports) : threads_(ports.threads), decoders_(ports.videoDecoders) {}

  // A unit with a parameter set. A PPS with which the sets are complete starts decoding for the delegate, unless it
  // runs already.
  // Errors: sets that make no decoder, or for which no thread can be had, are forgotten, so that the next pair is
  // tried.
  void offerSps(ByteView unit);
  void offerPps(ByteView unit, const std::weak_ptr<ZELPixelBufferDataProtocol>& delegate);

  // The sets of now.
  ParameterSets sets() const;

  // Queues a unit that bears its length; dropped where nothing is being decoded.
  void append(ZELDecodeRunLoop::Unit unit);

  // The oldest picture that was not polled; null when there is none.
  ZELDecodeRunLoop::Picture nextPicture();

  // What has become of all units, those before a reset included.
  PreviewStatistics statistics() const;

  // Forgets the sets and ends the decode thread, without waiting for it.
  void reset();

 private:
  void start(const ParameterSets& used, const std::weak_ptr<ZELPixelBufferDataProtocol>& delegate);
  std::shared_ptr<ZELDecodeRunLoop> decodeRunLoop() const;

  platform::Threads& threads_;
  platform::VideoDecoders* const decoders_;

  mutable Mutex mutex_;
  ParameterSets sets_ ZEL_GUARDED_BY(mutex_);
  std::shared_ptr<ZELDecodeRunLoop> decodeRunLoop_ ZEL_GUARDED_BY(mutex_);
  PreviewStatistics before_ ZEL_GUARDED_BY(mutex_);  // of the loops before this one
};

}  // namespace zel
