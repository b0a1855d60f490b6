#pragma once

#include <ZELTarkaSDK/EncodedStreamReceiver.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <utility>

#include "base/mutex.h"
#include "outputs/fault.h"
#include "outputs/timeline.h"

namespace zel {

// What has been handed to the receiver.
//
// Units: microseconds, bytes.
struct WrittenStream {
  std::uint64_t pictures = 0, audioFrames = 0;
  std::uint64_t droppedAudio = 0;  // frames before a run's first picture
  std::uint64_t videoBytes = 0, audioBytes = 0;
  std::optional<std::int64_t> newestVideo, newestAudio;
  bool complete = false;  // the requested length is reached
  Fault fault;
};

// Makes packets for a receiver out of one source after another: waits until both headers are known and a key picture
// comes, and sees to the times. A picture takes longer to come than the sound beside it: until the first one is there,
// the newest sound is kept, so that both begin together.
// Owner:  the receiver must outlive the object.
// Thread: any thread; the receiver is called under its lock, and must not wait.
class StreamWriter {
 public:
  using Bytes = std::span<const std::uint8_t>;
  using TimePoint = std::chrono::steady_clock::time_point;

  // length: microseconds after which the stream is complete. ended: complete, or a fault; called under the lock.
  StreamWriter(EncodedStreamReceiver& receiver, std::optional<std::int64_t> length, std::function<void()> ended)
      : receiver_(receiver), length_(length), ended_(std::move(ended)) {}

  // A new source begins; its times are unrelated to earlier ones. spherical: its pictures are equirectangular.
  void beginRun(bool spherical);

  // Parameter sets without start code; different later ones are inserted before the next keyframe.
  void onParameterSets(Bytes sps, Bytes pps);
  void onAudioConfig(Bytes config);
  // picture: its NAL units, each with its start code.
  //
  // Units: milliseconds.
  void onPicture(Bytes picture, bool key, std::int64_t time, TimePoint arrival);
  void onAudio(Bytes frame, std::int64_t time);

  WrittenStream written() const;

  // Where a picture of that time belongs on the stream's timeline; nothing before its first one.
  //
  // Units: milliseconds; microseconds.
  std::optional<std::int64_t> timeOf(std::int64_t time) const;

 private:
  struct Sound {
    ZELData frame;
    std::int64_t time = 0;  // milliseconds
  };
  static constexpr std::size_t kMostWaiting = 256;  // frames: five seconds, and 2 MiB

  bool begins(Bytes picture, bool key) ZEL_REQUIRES(mutex_);
  void keep(Sound sound) ZEL_REQUIRES(mutex_);
  void putKept(std::int64_t from) ZEL_REQUIRES(mutex_);
  void put(const Sound& sound) ZEL_REQUIRES(mutex_);
  bool fail(const char* fault) ZEL_REQUIRES(mutex_);
  bool isOver(std::int64_t time) ZEL_REQUIRES(mutex_);
  ZELData withChangedSets(Bytes picture, bool key) ZEL_REQUIRES(mutex_);

  EncodedStreamReceiver& receiver_;
  const std::optional<std::int64_t> length_;
  const std::function<void()> ended_;
  mutable Mutex mutex_;
  StreamHeaders headers_ ZEL_GUARDED_BY(mutex_);  // those of the begun stream, once there is a timeline
  ZELData sps_ ZEL_GUARDED_BY(mutex_), pps_ ZEL_GUARDED_BY(mutex_);  // the latest
  std::optional<Timeline> timeline_ ZEL_GUARDED_BY(mutex_);
  std::deque<Sound> kept_ ZEL_GUARDED_BY(mutex_);  // before a run's first picture
  WrittenStream written_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel
