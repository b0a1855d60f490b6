#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include <ZELTarkaSDK/LiveStatistics.h>

#include <ZELTarkaSDK/platform/clock.h>
#include <ZELTarkaSDK/platform/video_encoder.h>
#include "live/frame_queue.h"
#include "live/join_lock.h"
#include "live/shared_value.h"

namespace zel {

// The stitched pictures that wait to be encoded, the encoder, and the thread that feeds it.
// Owner:  the arguments of the constructor must outlive the object.
// Thread: any thread, except where an operation says otherwise.
class EncodeStage {
 public:
  using Encoder = std::shared_ptr<platform::VideoEncoder>;

  // encoders: null encodes nothing.
  EncodeStage(platform::Clock& clock, platform::VideoEncoders* encoders)
      : clock_(clock), encoders_(encoders), encodeThreadJoinLock_(clock) {}

  // A new encoder that is ready.
  // Errors: null where there is none or it does not open.
  Encoder open(const platform::VideoEncoderSettings& settings);

  // Feeds that encoder from now on, or none. Returns the one before; it lives until the picture that it is at is done.
  Encoder install(Encoder encoder) { return encoder_.set(std::move(encoder)); }

  void append(LiveFrame frame);

  // The body of the encode thread. whenFailed is called, by the thread that is still joined, when five pictures in a
  // row could not be encoded; the run then ends.
  // Thread: encode thread; one that comes while another is at it waits for its end.
  void run(const std::function<bool()>& isOver, const std::function<void()>& whenFailed);

  // Waits until the encode thread has left its loop: for good, on that thread itself.
  void join() { encodeThreadJoinLock_.join(); }

  // Forgets the pictures that wait.
  void clear() { pixel_queue_.clear(); }

  // Pictures in a row, over all runs.
  std::int32_t encodeFailCount() const { return encodeFailCount_.get(); }
  void copyStatistics(LiveStatistics& into) const;

 private:
  bool step();
  bool encode(const LiveFrame& frame);
  bool countFailure();

  platform::Clock& clock_;
  platform::VideoEncoders* const encoders_;
  FrameQueue pixel_queue_;  // the interface's spelling
  Guarded<Encoder> encoder_;
  Relaxed<std::int32_t> encodeFailCount_ = 0;
  RelaxedCount dropped_ = 0, encoded_ = 0, notEncoded_ = 0;
  JoinLock encodeThreadJoinLock_;
};

}  // namespace zel
