#include "simulator/media/media_source.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zel::simulator {
namespace {

constexpr std::uint8_t kVideoStream = 0, kAudioStream = 1;
constexpr int kSequenceSet = 7, kPictureSet = 8;
constexpr std::size_t kMostPieces = 5;

// Stream (1), camera time in milliseconds (8).
MediaFrame timestampFrame(std::uint16_t type, double cameraTime, double due) {
  const bool sound = type == kAudio;
  const auto time = static_cast<std::uint64_t>(std::llround(cameraTime * 1000));
  return {kTimestamp, packed(sound ? kAudioStream : kVideoStream, time), due, sound};
}

}  // namespace

MediaSource::MediaSource(MediaSetup setup) : setup_(std::move(setup)), random_(setup_.seed) {}

std::optional<MediaFrame> MediaSource::next(double now) {
  while (ready_.empty()) {
    if (audioIsNext()) {
      queueAudio();
    } else if (!queuePicture(now)) {
      return std::nullopt;
    }
  }
  MediaFrame frame = std::move(ready_.front());
  ready_.pop_front();
  return frame;
}

bool MediaSource::audioIsNext() {
  const double pictureTime = static_cast<double>(picture_) / setup_.rate;
  if (!audio_ && isReady(setup_.audio)) {
    audio_ = setup_.audio.get();
    audioFrame_ = static_cast<std::size_t>(std::ceil(pictureTime / audio_->secondsPerFrame()));
  }
  if (!audio_ || audio_->frames.empty()) return false;
  return static_cast<double>(audioFrame_) * audio_->secondsPerFrame() < pictureTime;
}

void MediaSource::queueAudio() {
  const double time = stoodStill_ + static_cast<double>(audioFrame_) * audio_->secondsPerFrame();
  queue(kAudio, {audio_->frames[audioFrame_ % audio_->frames.size()]}, time);
  ++audioFrame_;
}

bool MediaSource::queuePicture(double now) {
  const VideoLoop::PicturePtr picture = setup_.video->picture(picture_);
  const double time = stoodStill_ + static_cast<double>(picture_) / setup_.rate;
  if (!picture) {
    stoodStill_ += std::max(0.0, now - time);
    return false;
  }
  ++picture_;
  if (picture->key) ++keyPictures_;
  if (picture->key && happens(setup_.faults.lostKeyFrames)) return true;
  queue(kVideo, pieces(afterFaults(*picture)), time);
  return true;
}

void MediaSource::queue(std::uint16_t type, std::vector<Bytes> payloads, double mediaTime) {
  const double due = sendingTime(mediaTime);
  if (setup_.timestamps) ready_.push_back(timestampFrame(type, mediaTime - clockStart_, due));
  for (Bytes& payload : payloads) ready_.push_back({type, std::move(payload), due, type == kAudio});
}

// In bursts, frames are sent at the end of their burst.
double MediaSource::sendingTime(double mediaTime) const {
  if (setup_.faults.burst <= 1) return mediaTime;
  const double length = static_cast<double>(setup_.faults.burst) / setup_.rate;
  constexpr double kRounding = 1e-9;  // a picture's time is exactly between two bursts
  return (std::floor(mediaTime / length + kRounding) + 1) * length;
}

Bytes MediaSource::afterFaults(const VideoPicture& picture) {
  const bool withoutSets = picture.key && keyPictures_ <= setup_.faults.missingParameterSets;
  if (!withoutSets && setup_.faults.corruptUnits <= 0) return picture.bytes;
  Bytes bytes;
  for (const UnitPlace& unit : unitsIn(picture.bytes)) {
    const int type = unitType(picture.bytes, unit);
    if (withoutSets && (type == kSequenceSet || type == kPictureSet)) continue;
    const std::size_t at = bytes.size() + unit.header - unit.begin;
    bytes.insert(bytes.end(), picture.bytes.begin() + static_cast<std::ptrdiff_t>(unit.begin),
                 picture.bytes.begin() + static_cast<std::ptrdiff_t>(unit.end));
    if (isSlice(type) && happens(setup_.faults.corruptUnits)) corrupt(std::span(bytes).subspan(at + 1));
  }
  return bytes;
}

void MediaSource::corrupt(std::span<std::uint8_t> slice) {
  if (slice.empty()) return;
  for (auto flips = 1 + random_() % 4; flips > 0; --flips)
    slice[random_() % slice.size()] ^= static_cast<std::uint8_t>(1u << random_() % 8);
}

std::vector<Bytes> MediaSource::pieces(Bytes bytes) {
  std::vector<Bytes> result;
  while (setup_.faults.splitAnywhere && bytes.size() > 1 && result.size() + 1 < kMostPieces) {
    const auto cut = bytes.begin() + static_cast<std::ptrdiff_t>(1 + random_() % (bytes.size() - 1));
    result.emplace_back(bytes.begin(), cut);
    bytes.erase(bytes.begin(), cut);
  }
  result.push_back(std::move(bytes));
  return result;
}

}  // namespace zel::simulator
