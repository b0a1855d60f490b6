#include "outputs/stream_writer.h"

#include <utility>

#include <ZELTarkaSDK/AudioConfig.h>

#include "outputs/h264_pictures.h"
#include "platform/h264/h264_headers.h"

namespace zel {
namespace {

constexpr std::int64_t kLongestWait = 10'000;  // milliseconds; a larger distance means another clock

}  // namespace

void StreamWriter::beginRun(bool spherical) {
  const MutexLock lock(mutex_);
  if (!timeline_) headers_.spherical = spherical;
  if (timeline_) timeline_->beginRun();
  written_.droppedAudio += kept_.size();
  kept_.clear();
}

void StreamWriter::onParameterSets(Bytes sps, Bytes pps) {
  const MutexLock lock(mutex_);
  sps_ = ZELData(sps);
  pps_ = ZELData(pps);
}

void StreamWriter::onAudioConfig(Bytes config) {
  const MutexLock lock(mutex_);
  if (!timeline_) headers_.audioConfig = ZELData(config);
}

void StreamWriter::onPicture(Bytes picture, bool key, std::int64_t time, TimePoint arrival) {
  const MutexLock lock(mutex_);
  if (written_.complete || written_.fault || !begins(picture, key)) return;
  const bool isFirst = !timeline_->hasBegun();
  const auto placed = timeline_->video(time, key);
  if (!placed || isOver(*placed)) return;
  receiver_.onPacket(
      {Track::video, key, *placed, withChangedSets(picture, key), arrival, 0, timeline_->takeBreak(Track::video)});
  ++written_.pictures;  // behind what memory may end at
  written_.videoBytes += picture.size();
  written_.newestVideo = placed;
  if (isFirst) putKept(time);
}

void StreamWriter::onAudio(Bytes frame, std::int64_t time) {
  const MutexLock lock(mutex_);
  if (written_.complete || written_.fault || frame.empty()) return;
  Sound sound{ZELData(frame), time};
  timeline_ && timeline_->hasBegun() ? put(sound) : keep(std::move(sound));
}

void StreamWriter::keep(Sound sound) {
  kept_.push_back(std::move(sound));
  if (kept_.size() <= kMostWaiting) return;
  kept_.pop_front();
  ++written_.droppedAudio;
}

// from: the time of the first picture.
void StreamWriter::putKept(std::int64_t from) {
  for (const Sound& sound : std::exchange(kept_, {})) {
    const bool soundsWithIt = sound.time >= from && sound.time <= from + kLongestWait;
    soundsWithIt ? put(sound) : static_cast<void>(++written_.droppedAudio);
  }
}

void StreamWriter::put(const Sound& sound) {
  const auto placed = timeline_->audio(sound.time);
  if (!placed || (length_ && *placed >= *length_)) return;
  ++written_.audioFrames;
  written_.audioBytes += sound.frame.size();
  written_.newestAudio = placed;
  receiver_.onPacket({Track::audio, false, *placed, sound.frame, std::nullopt, 0, timeline_->takeBreak(Track::audio)});
}

WrittenStream StreamWriter::written() const {
  const MutexLock lock(mutex_);
  return written_;
}

std::optional<std::int64_t> StreamWriter::timeOf(std::int64_t time) const {
  const MutexLock lock(mutex_);
  return timeline_ ? timeline_->pictureAt(time) : std::nullopt;
}

// Whether the receiver has the headers; the first key picture brings them.
bool StreamWriter::begins(Bytes picture, bool key) {
  if (timeline_) return true;
  if (!key || sps_.empty() || pps_.empty() || headers_.audioConfig.empty()) return false;
  const auto size = sizeOfPictures(sps_.bytes(), pps_.bytes(), picture);
  if (!size) return false;
  const auto sound = parseAudioConfig(headers_.audioConfig.bytes());
  if (!sound) return fail("the camera's sound is of an unknown kind");
  headers_ = {
      sps_, pps_, headers_.audioConfig, size->width, size->height, headers_.spherical, colourOfPictures(sps_.bytes())};
  timeline_.emplace(sound->rate);
  receiver_.onHeaders(headers_);
  return true;
}

bool StreamWriter::fail(const char* fault) {
  written_.fault = fault;
  ended_();
  return false;
}

bool StreamWriter::isOver(std::int64_t time) {
  if (!length_ || time < *length_) return false;
  written_.complete = true;
  ended_();
  return true;
}

ZELData StreamWriter::withChangedSets(Bytes picture, bool key) {
  if (!key || (sps_ == headers_.sps && pps_ == headers_.pps)) return ZELData(picture);
  std::vector<std::uint8_t> bytes;
  for (const ZELData& set : {sps_, pps_}) platform::appendUnit(bytes, set.bytes());
  bytes.insert(bytes.end(), picture.begin(), picture.end());
  return ZELData(std::move(bytes));
}

}  // namespace zel
