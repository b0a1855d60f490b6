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

// Counters of the packets passed to the outputs.
// Units:  microseconds, bytes.
struct WrittenStream {
  std::uint64_t pictures = 0, audioFrames = 0;
  std::uint64_t droppedAudio = 0;  // frames before a run's first picture
  std::uint64_t videoBytes = 0, audioBytes = 0;
  std::optional<std::int64_t> newestVideo, newestAudio;
  bool complete = false;  // the requested length is reached
  Fault fault;
};

// Makes packets for the outputs from one source after another: waits for both headers and a keyframe, and puts all
// times on one timeline. A picture arrives later than the sound of its time. Until the first picture, the newest sound
// is kept, so that both begin together.
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

  // A new source begins; its times are unrelated to earlier ones.
  void beginRun();

  // Parameter sets without start code; different later ones are inserted before the next keyframe.
  void onParameterSets(Bytes sps, Bytes pps);
  void onAudioConfig(Bytes config);
  // picture: its NAL units, each with its start code.
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
  StreamHeaders headers_ ZEL_GUARDED_BY(mutex_);  // those of the begun stream, once there is a timeline
  ZELData sps_ ZEL_GUARDED_BY(mutex_), pps_ ZEL_GUARDED_BY(mutex_);  // the latest
  std::optional<Timeline> timeline_ ZEL_GUARDED_BY(mutex_);
  std::deque<Sound> kept_ ZEL_GUARDED_BY(mutex_);  // before a run's first picture
  WrittenStream written_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel::app
