#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include <ZELTarkaSDK/LiveStatistics.h>
#include <ZELTarkaSDK/platform/clock.h>
#include <ZELTarkaSDK/platform/video_encoder.h>

#include "base/shared_value.h"
#include "live/frame_queue.h"
#include "live/join_lock.h"

namespace zel {

// The queue of stitched pictures, the encoder, and the encode thread's loop.
// Owner:  the arguments of the constructor must outlive the object.
// Thread: any thread, except where an operation says otherwise.
class EncodeStage {
 public:
  using Encoder = std::shared_ptr<platform::VideoEncoder>;

  // encoders: null disables encoding.
  EncodeStage(platform::Clock& clock, platform::VideoEncoders* encoders)
      : clock_(clock), encoders_(encoders), encodeThreadJoinLock_(clock) {}

  // A new, opened encoder.
  // Errors: null where there is none, it does not open, or memory ends.
  Encoder open(const platform::VideoEncoderSettings& settings);

  // Sets the encoder to feed, or none. Returns the previous one, which stays alive until its current picture is
  // encoded.
  Encoder install(Encoder encoder) { return encoder_.set(std::move(encoder)); }

  // Errors: none; a picture for which there is no memory counts as dropped.
  void append(LiveFrame frame);

  // The body of the encode thread. whenFailed is called on this thread, before it can be joined, when five pictures in
  // a row could not be encoded; the run then ends.
  // Thread: encode thread; a second caller waits until the first has returned.
  void run(const std::function<bool()>& isOver, const std::function<void()>& whenFailed);

  // Waits until the encode thread has left its loop; on that thread itself, forever.
  void join() { encodeThreadJoinLock_.join(); }

  // Drops all queued pictures.
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
