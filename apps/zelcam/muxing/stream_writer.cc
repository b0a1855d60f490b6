#include "apps/zelcam/muxing/stream_writer.h"

#include <array>

#include "apps/zelcam/muxing/audio_config.h"
#include "apps/zelcam/muxing/h264_colour.h"
#include "apps/zelcam/muxing/h264_size.h"

namespace zel::app {
namespace {

constexpr std::array<std::uint8_t, 4> kStartCode = {0, 0, 0, 1};

void append(std::vector<std::uint8_t>& bytes, std::span<const std::uint8_t> more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

}  // namespace

void StreamWriter::beginRun() {
  const MutexLock lock(mutex_);
  if (timeline_) timeline_->beginRun();
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
  const auto placed = timeline_->video(time, key);
  if (!placed || isOver(*placed)) return;
  ++written_.pictures;
  written_.videoBytes += picture.size();
  written_.newestVideo = placed;
  rules_.put({Track::video, key, *placed, withChangedSets(picture, key), arrival});
}

void StreamWriter::onAudio(Bytes frame, std::int64_t time) {
  const MutexLock lock(mutex_);
  if (written_.complete || written_.fault || !timeline_ || frame.empty()) return;
  const auto placed = timeline_->audio(time);
  if (!placed || (rules_.length && *placed >= *rules_.length)) return;
  ++written_.audioFrames;
  written_.audioBytes += frame.size();
  written_.newestAudio = placed;
  rules_.put({Track::audio, false, *placed, ZELData(frame), std::nullopt});
}

WrittenStream StreamWriter::written() const {
  const MutexLock lock(mutex_);
  return written_;
}

// Whether the outputs have begun; the first key picture lets them.
bool StreamWriter::begins(Bytes picture, bool key) {
  if (timeline_) return true;
  if (!key || sps_.empty() || pps_.empty() || headers_.audioConfig.empty()) return false;
  const auto size = sizeOfPictures(sps_.bytes(), pps_.bytes(), picture);
  if (!size) return false;
  const auto sound = parseAudioConfig(headers_.audioConfig.bytes());
  if (!sound) return fail("the camera's sound is of an unknown kind");
  headers_ = {
      sps_, pps_, headers_.audioConfig, size->width, size->height, rules_.spherical, colourOfPictures(sps_.bytes())};
  timeline_.emplace(sound->rate);
  rules_.begin(headers_);
  return true;
}

bool StreamWriter::fail(const char* fault) {
  written_.fault = fault;
  rules_.ended();
  return false;
}

bool StreamWriter::isOver(std::int64_t time) {
  if (!rules_.length || time < *rules_.length) return false;
  written_.complete = true;
  rules_.ended();
  return true;
}

ZELData StreamWriter::withChangedSets(Bytes picture, bool key) {
  if (!key || (sps_ == headers_.sps && pps_ == headers_.pps)) return ZELData(picture);
  std::vector<std::uint8_t> bytes;
  for (const ZELData& set : {sps_, pps_}) {
    append(bytes, kStartCode);
    append(bytes, set.bytes());
  }
  append(bytes, picture);
  return ZELData(std::move(bytes));
}

}  // namespace zel::app
