#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "apps/zelcam/live_figures.h"

namespace zel::app {

// How much later than its own a picture's time is. From firmware 190 on the camera tells a time before each picture,
// and the player knows that a picture is whole when the next one begins: by then it has been told the next one's time.
// resolution: the code. Units: milliseconds.
constexpr std::int64_t pictureLag(std::int64_t firewareVersion, int resolution) {
  constexpr std::int64_t kFirst = 190;
  constexpr std::int64_t kRates[] = {15, 20, 25, 30};  // pictures a second, by the resolution code's remainder
  return firewareVersion >= kFirst ? 1000 / kRates[resolution % 4] : 0;
}

// Where a live stream comes from, for one connection of the camera.
// Thread: main thread.
class LiveFeed {
 public:
  virtual ~LiveFeed() = default;

  // Switches the camera's preview and sound on.
  virtual void start() = 0;
  // Ends the stream; nothing comes any more when it returns.
  virtual void stop() = 0;

  // Why it cannot go on, in words.
  virtual std::optional<std::string> failure() const = 0;
  virtual FeedFigures figures() const = 0;
};

}  // namespace zel::app
