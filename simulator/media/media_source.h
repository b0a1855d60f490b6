#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <random>
#include <span>
#include <vector>

#include "simulator/media/future_audio.h"
#include "simulator/media/media_faults.h"
#include "simulator/media/video_loop.h"
#include "simulator/wire.h"

namespace zel::simulator {

// A frame of the stream, and its sending time.
// Units:  seconds since the source began.
struct MediaFrame {
  std::uint16_t type = 0;  // kVideo, kAudio or kTimestamp
  Bytes payload;
  double due = 0;
  bool sound = false;  // an audio frame, or the timestamp of one
};

struct MediaSetup {
  std::shared_ptr<const VideoLoop> video;
  FutureAudio audio;       // begins when it is ready, in sync with the pictures
  int rate = 30;           // pictures a second
  bool timestamps = true;  // a timestamp frame precedes each picture and each audio frame
  MediaFaults faults;
  std::uint64_t seed = 1;
};

// The media of one connection as an endless series of frames in time order.
// Thread: one at a time.
class MediaSource {
 public:
  explicit MediaSource(MediaSetup setup);

  // The next frame. Nothing while its picture is being rendered: the media's time then stands still.
  // now: seconds since the source began.
  std::optional<MediaFrame> next(double now);

  // Sets the camera's clock, used for timestamps, to 0 at that moment of the source's time; initially at its beginning.
  void startClock(double now) { clockStart_ = now; }

 private:
  bool audioIsNext();
  bool queuePicture(double now);
  void queueAudio();
  void queue(std::uint16_t type, std::vector<Bytes> payloads, double mediaTime);
  double sendingTime(double mediaTime) const;
  Bytes afterFaults(const VideoPicture& picture);
  void corrupt(std::span<std::uint8_t> slice);
  std::vector<Bytes> pieces(Bytes bytes);
  bool happens(double share) { return std::uniform_real_distribution<double>(0, 1)(random_) < share; }

  const MediaSetup setup_;
  std::mt19937_64 random_;
  std::shared_ptr<const AudioTrack> audio_;  // null until it is ready
  std::deque<MediaFrame> ready_;
  std::size_t picture_ = 0;     // the next one's number
  std::size_t audioFrame_ = 0;  // the next one's number
  int keyPictures_ = 0;         // sent so far
  double stoodStill_ = 0;       // how long the media's time stood still
  double clockStart_ = 0;
};

}  // namespace zel::simulator
