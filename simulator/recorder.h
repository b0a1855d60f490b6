#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "simulator/camera_state.h"
#include "simulator/camera_world.h"
#include "simulator/faults.h"

namespace zel::simulator {

// Recordings: they fill the card with time, at the bitrate that was set when they began. One that reaches the time
// limit or the end of the card ends itself and says so.
// Thread: the simulator's.
class Recorder {
 public:
  // Owner:  all outlive it and the world's timers.
  Recorder(CameraWorld& world, CameraState& state, const Faults& faults)
      : world_(world), state_(state), faults_(faults) {}

  bool recording() const { return current_.has_value(); }

  // Errors: false while one is under way, and when the card takes no byte.
  bool start(Bytes sensors, Bytes extra);

  // The file.
  // Errors: nothing when none is under way.
  std::optional<FileEntry> stop();

  // The card gets its room back.
  // Errors: false when none is under way.
  bool cancel();

  // Brings the card up to now; a recording that has reached an end ends.
  void settle();

  // The file ends and the recording goes on in another. Without one, the event alone is sent. So with the others.
  void split();
  void endForCard();
  void endForTime();

 private:
  using Time = std::chrono::milliseconds;

  struct Recording {
    Bytes sensors, extra;
    FileEntry file;  // its size is what the card has taken
    Time began;
    std::uint64_t bytesPerMs;
  };

  void grow(Time until);
  void settleLater();
  FileEntry finish();
  Bytes endOfCurrent();
  std::optional<Time> limit() const;

  CameraWorld& world_;
  CameraState& state_;
  const Faults& faults_;
  std::optional<Recording> current_;
  std::uint64_t timers_ = 0;  // only the youngest is heard
};

}  // namespace zel::simulator
