#pragma once

#include <memory>

#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "base/mutex.h"
#include "media/parameter_sets.h"
#include "media/zel_decode_run_loop.h"

namespace zel {

// The stream's parameter sets, and the decode thread, which starts with the first complete pair. Without decoders in
// the ports nothing is decoded.
// Owner:  as ZELDecodeRunLoop. Keeps the receiver of the stream's pictures until the next reset.
// Thread: any thread.
class PreviewDecoding {
 public:
  explicit PreviewDecoding(const platform::Ports& ports) : threads_(ports.threads), decoders_(ports.videoDecoders) {}

  using Receiver = std::shared_ptr<ZELPixelBufferDataProtocol>;

  // A unit with a parameter set. The PPS that completes the sets starts decoding for the stream's receiver, unless it
  // runs already.
  // Errors: sets for which no decoder or no thread can be created are dropped, so that the next pair is tried.
  void offerSps(ByteView unit);
  void offerPps(ByteView unit);

  // The current sets.
  ParameterSets sets() const;

  // Queues a length-prefixed unit; it is dropped when decoding is not running.
  void append(ZELDecodeRunLoop::Unit unit);

  // The oldest picture that was not polled yet; null when there is none.
  ZELDecodeRunLoop::Picture nextPicture();

  // Counters of all units, including those before a reset.
  PreviewStatistics statistics() const;

  // Clears the sets and ends the decode thread without waiting for it. The receiver gets the pictures of the next
  // stream; null: they are dropped.
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
