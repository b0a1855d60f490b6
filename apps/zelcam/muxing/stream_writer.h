#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "apps/zelcam/muxing/media_packet.h"
#include "apps/zelcam/muxing/timeline.h"
#include "base/mutex.h"

namespace zel::app {

// What has been handed to the outputs.
// Units:  microseconds, bytes.
struct WrittenStream {
  std::uint64_t pictures = 0, audioFrames = 0;
  std::uint64_t droppedAudio = 0;  // frames that came before a run's first picture, and did not sound with it either
  std::uint64_t videoBytes = 0, audioBytes = 0;
  std::optional<std::int64_t> newestVideo, newestAudio;
  bool complete = false;  // as long as it was asked for
  Fault fault;
};

// Makes packets for the outputs out of one source after another: waits until both headers are known and a key picture
// comes, and sees to the times. A picture takes longer to come than the sound beside it: until the first one is there,
// the newest sound is kept, so that both begin together.
// Thread: any thread; the outputs are called under its lock, and must not wait.
class StreamWriter {
 public:
  using Bytes = std::span<const std::uint8_t>;
  using TimePoint = std::chrono::steady_clock::time_point;

  struct Rules {
    bool spherical = false;
    std::optional<std::int64_t> length;  // microseconds after which the stream is complete
    std::function<void(const StreamHeaders&)> begin;
    std::function<void(const MediaPacket&)> put;
    std::function<void()> ended;  // complete, or a fault
  };

  explicit StreamWriter(Rules rules) : rules_(std::move(rules)) {}

  // Another source takes over: its times have nothing to do with those before.
  void beginRun();

  // Parameter sets without start code; later ones are put before the next key picture where they differ.
  void onParameterSets(Bytes sps, Bytes pps);
  void onAudioConfig(Bytes config);
  // picture: its units, each behind its start code.
  // Units:  milliseconds.
  void onPicture(Bytes picture, bool key, std::int64_t time, TimePoint arrival);
  void onAudio(Bytes frame, std::int64_t time);

  WrittenStream written() const;

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

  const Rules rules_;
  mutable Mutex mutex_;
  StreamHeaders headers_ ZEL_GUARDED_BY(mutex_);  // as they were begun with, once there is a timeline
  ZELData sps_ ZEL_GUARDED_BY(mutex_), pps_ ZEL_GUARDED_BY(mutex_);  // the latest
  std::optional<Timeline> timeline_ ZEL_GUARDED_BY(mutex_);
  std::deque<Sound> kept_ ZEL_GUARDED_BY(mutex_);  // of a run whose first picture has not come
  WrittenStream written_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel::app
