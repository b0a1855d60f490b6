#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "simulator/camera_state.h"
#include "simulator/camera_world.h"
#include "simulator/faults.h"

namespace zel::simulator {

// Recordings, which fill the card at the bitrate that was set when they began. At the time limit, or when the card is
// full, a recording ends by itself with an event.
// Thread: the simulator's.
class Recorder {
 public:
  // Owner:  all outlive it and the world's timers.
  Recorder(CameraWorld& world, CameraState& state, const Faults& faults)
      : world_(world), state_(state), faults_(faults) {}

  bool recording() const { return current_.has_value(); }

  // Errors: false during another recording, and when the card has no space.
  bool start(Bytes sensors, Bytes extra);

  // The file.
  // Errors: nothing without a recording.
  std::optional<FileEntry> stop();

  // Frees the space on the card.
  // Errors: false without a recording.
  bool cancel();

  // Updates the card to the current time; ends a recording that has reached its end.
  void settle();

  // Ends the file and continues the recording in another. Without a recording, only the event is sent; also for the
  // next two.
  void split();
  void endForCard();
  void endForTime() { world_.tellHost(message(kTimeRunoutEvent, endOfCurrent())); }

 private:
  using Time = std::chrono::milliseconds;

  struct Recording {
    Bytes sensors, extra;
    FileEntry file;  // its size is the space used on the card
    Time began;
    std::uint64_t bytesPerMs;
  };

  void grow(Time until);
  void settleLater();
  FileEntry finish();
  Bytes endOfCurrent() { return current_ ? entryBody(finish()) : Bytes(); }
  std::optional<Time> limit() const;

  CameraWorld& world_;
  CameraState& state_;
  const Faults& faults_;
  std::optional<Recording> current_;
  std::uint64_t timers_ = 0;  // only the newest timer counts
};

}  // namespace zel::simulator
