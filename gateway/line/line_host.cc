#include "gateway/line/line_host.h"

#include <algorithm>
#include <utility>

namespace zel::gateway {
namespace {

std::size_t costOf(const MediaItem& item) { return item.frame.size() + HostQueue::kPerEntry; }

}  // namespace

void LineHost::sync(SharedBytes markerAndReply, LineTime now) {
  wantsMarker_ = false;
  isSynced_ = true;
  queue_.add(std::move(markerAndReply));
  beat_ = kFirstBeat;
  nextBeat_ = now + beat_;
  wasTold_ = false;
}

void LineHost::send(SharedBytes frame) {
  wasTold_ = true;
  queue_.add(std::move(frame));
}

void LineHost::offer(const SharedBytes& frame) {
  if (queue_.holdsTooMuchMedia()) return;
  wasTold_ = true;
  queue_.addMedia(frame);
}

// The early beats come whatever else was sent: that may be in the same read as the marker.
void LineHost::beat(const MediaItem& sign, bool cameraLives, LineTime now) {
  if (!isSynced_ || now < nextBeat_) return;
  const bool isEarly = beat_ < kBeat;
  if (cameraLives && (isEarly || !wasTold_)) queue_.add(timeSince(sign, zero_));
  beat_ = std::min<std::chrono::milliseconds>(isEarly ? 4 * beat_ : kBeat, kBeat);
  nextBeat_ = now + beat_;
  wasTold_ = false;
}

void LineHost::begin() {
  missed_.clear();
  missedBytes_ = 0;
  awaitsKey_ = false;
}

void LineHost::join(const std::deque<MediaItem>& since, LineTime now) {
  begin();
  awaitsKey_ = since.empty();
  missed_ = since;
  for (const MediaItem& item : missed_) missedBytes_ += costOf(item);
  nextMissed_ = now + kJoinDelay;
}

void LineHost::end() {
  begin();
  queue_.dropMedia();
}

bool LineHost::mayHave(const MediaItem& item) const {
  const bool isSound = item.kind == MediaItem::Kind::audio || item.kind == MediaItem::Kind::audioTime;
  return hasPreview && (hasSound || !isSound);
}

void LineHost::show(const MediaItem& item, bool beginsKey, const std::deque<MediaItem>& since) {
  if (!hasPreview) return;
  if (awaitsKey_ && !beginsKey) return;
  if (awaitsKey_) {
    awaitsKey_ = false;
    for (const MediaItem& one : since) give(one);
  } else if (missed_.empty()) {
    give(item);
  } else {
    missed_.push_back(item);
    missedBytes_ += costOf(item);
  }
  skipIfTooSlow();
}

// Who lags behind goes on with the next key picture.
void LineHost::skipIfTooSlow() {
  if (!queue_.holdsTooMuchMedia() && missedBytes_ <= HostQueue::kMostMedia) return;
  queue_.dropMedia();
  begin();
  awaitsKey_ = true;
}

void LineHost::give(const MediaItem& item) {
  if (!mayHave(item)) return;
  queue_.addMedia(item.isTime() ? timeSince(item, zero_) : item.frame);
  wasTold_ = true;
}

// One picture, with what stands before the one behind it.
void LineHost::catchUp(LineTime now) {
  if (missed_.empty() || now < nextMissed_) return;
  bool hasPicture = false;
  while (!missed_.empty() && !(hasPicture && missed_.front().beginsPicture)) {
    hasPicture = hasPicture || missed_.front().beginsPicture;
    missedBytes_ -= costOf(missed_.front());
    give(missed_.front());
    missed_.pop_front();
  }
  nextMissed_ = now + kCatchUpPace;
}

std::optional<LineTime> LineHost::due() const {
  std::optional<LineTime> first;
  if (isSynced_) first = nextBeat_;
  if (!missed_.empty() && (!first || nextMissed_ < *first)) first = nextMissed_;
  return first;
}

}  // namespace zel::gateway
