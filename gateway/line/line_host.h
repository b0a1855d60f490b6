#pragma once

#include <chrono>
#include <deque>

#include "gateway/line/host_queue.h"
#include "gateway/line/media_item.h"
#include "gateway/line/picture_cache.h"
#include "gateway/line/request_desk.h"

namespace zel::gateway {

// One host of a line: what it is told, and of the preview what it is shown.
//
// Thread: one.
class LineHost {
 public:
  // Between two signs of life to a host that is told nothing else. Hosts take 3 s without a frame for silence.
  static constexpr std::chrono::milliseconds kBeat{500};
  // After the marker a host takes what it has read with its next read only: a few early signs cause that.
  static constexpr std::chrono::milliseconds kFirstBeat{2};
  // A host resets its player when it handles the reply to the start, behind which the pictures must come.
  static constexpr std::chrono::milliseconds kJoinDelay{50};
  // Between two pictures of what a late joiner has missed: hosts keep 16 undecoded ones, and drop others.
  static constexpr std::chrono::milliseconds kCatchUpPace{8};

  explicit LineHost(std::int64_t zero) : zero_(zero) {}

  HostQueue& queue() { return queue_; }

  // -- The marker
  void wantMarker() { wantsMarker_ = !isSynced_; }
  bool wantsMarker() const { return wantsMarker_; }
  bool isSynced() const { return isSynced_; }
  // Sends the marker and the reply.
  void sync(SharedBytes markerAndReply, LineTime now);

  // Sends what must not be lost.
  void send(SharedBytes frame);

  // Sends what is left out where the host reads too slowly.
  void offer(const SharedBytes& frame);

  // -- Signs of life
  // Sends one, if it is time and the camera lives. sign: a frame that changes nothing.
  void beat(const MediaItem& sign, bool cameraLives, LineTime now);

  // -- The preview
  // It begins with the camera's first frame.
  void begin();
  // It begins with what has been shown since the last key picture, or with the next one.
  void join(const std::deque<MediaItem>& since, LineTime now);
  void end();
  void show(const MediaItem& item, bool beginsKey, const std::deque<MediaItem>& since);
  // Shows what is due of what was missed.
  void catchUp(LineTime now);

  // -- The camera's clock
  std::int64_t zero() const { return zero_; }
  void setZero(std::int64_t zero) { zero_ = zero; }

  std::optional<LineTime> due() const;

  bool hasPreview = false;        // asked for, and not refused
  bool previewConfirmed = false;  // the camera has agreed
  bool hasSound = false;

 private:
  void give(const MediaItem& item);
  void skipIfTooSlow();
  bool mayHave(const MediaItem& item) const;

  HostQueue queue_;
  bool wantsMarker_ = false, isSynced_ = false;
  bool wasTold_ = false;  // something since the last beat
  LineTime nextBeat_;
  std::chrono::milliseconds beat_ = kFirstBeat;
  std::int64_t zero_;

  bool awaitsKey_ = false;
  std::deque<MediaItem> missed_;  // to be shown, before anything newer
  std::size_t missedBytes_ = 0;
  LineTime nextMissed_;
};

}  // namespace zel::gateway
