#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include <ZELTarkaSDK/LiveStatistics.h>
#include <ZELTarkaSDK/ZELLiveDataSourceProtocol.h>

#include "base/shared_value.h"
#include "live/live_settings.h"

namespace zel {

// Delivers sound and video to the delegate. The first sound is the origin of all times. The header of each is delivered
// first, and once a run. Encoded video and sound are held back until both headers are known.
// Units:  milliseconds; timestamps in are the camera's, as phone time, and those out count from the origin.
// Owner:  the settings must outlive the object.
// Thread: any thread. The delegate is called without a lock.
class LiveOutput {
 public:
  using Bytes = std::span<const std::uint8_t>;
  using Delegate = std::shared_ptr<ZELLiveDataSourceProtocol>;

  explicit LiveOutput(const LiveSettings& settings) : settings_(settings) {}

  void setDelegate(std::weak_ptr<ZELLiveDataSourceProtocol> delegate) { delegate_.set(std::move(delegate)); }
  Delegate delegate() const { return delegate_.get().lock(); }

  // Begins a run.
  void restart();

  // A picture's time from the origin. Empty when the picture is dropped: while cancelled, before the first sound, or
  // older than that.
  std::optional<std::int64_t> takePicture(std::int64_t timestamp, bool cancelled);

  // onAACHeader:size:, onAACAdts:size:timestamp: - the camera's sound.
  void onAACHeader(Bytes header);
  void onAACAdts(Bytes data, std::int64_t timestamp);

  // addVideoStream:spsSize:pps:ppsSize: - the encoder's parameter sets.
  void addVideoStream(Bytes sps, Bytes pps);
  // addH264Nalu:size:keyframe:timestamp: - one unit with its 4-byte length, which the start code overwrites. An empty
  // unit is dropped.
  void addH264Nalu(std::span<std::uint8_t> unit, bool keyframe, std::int64_t timestamp);

  bool hasVideo() const { return hasVideo_.get(); }
  bool hasAudio() const { return hasAudio_.get(); }
  std::int64_t firstTimestamp() const { return firstTimestamp_.get(); }
  std::int64_t bufferTimestamp() const { return bufferTimestamp_.get(); }
  void copyStatistics(LiveStatistics& into) const;

 private:
  template <class Call>
  bool deliver(Call call) const;
  void addAACData(Bytes data, std::int64_t timestamp);
  bool waitsForVideo() const;
  bool letsThrough(std::int64_t unitsTimestamp) const;

  const LiveSettings& settings_;
  Guarded<std::weak_ptr<ZELLiveDataSourceProtocol>> delegate_;
  Relaxed<bool> hasVideo_ = false;
  Relaxed<bool> hasAudio_ = false;
  Relaxed<std::int64_t> firstTimestamp_ = 0;   // 0: no sound yet
  Relaxed<std::int64_t> bufferTimestamp_ = 0;  // of the newest picture, in camera time
  RelaxedCount pictures_ = 0, notWanted_ = 0, units_ = 0, droppedUnits_ = 0, audioFrames_ = 0, droppedAudio_ = 0;
};

}  // namespace zel
