#pragma once

#include <optional>
#include <string>

#include "apps/zelcam/live_figures.h"

namespace zel::app {

// Pictures a second. resolution: the code.
constexpr int picturesPerSecond(int resolution) {
  constexpr int kRates[] = {15, 20, 25, 30};  // by the code's remainder
  return kRates[resolution % 4];
}

// The source of a live stream, for one connection of the camera.
// Thread: main thread.
class LiveFeed {
 public:
  virtual ~LiveFeed() = default;

  // Switches the camera's preview and sound on.
  virtual void start() = 0;
  // Ends the stream; nothing is delivered after its return.
  virtual void stop() = 0;

  // Why it cannot continue, in words.
  virtual std::optional<std::string> failure() const = 0;
  virtual FeedFigures figures() const = 0;
};

}  // namespace zel::app
