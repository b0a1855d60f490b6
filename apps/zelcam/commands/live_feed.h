#pragma once

#include <optional>
#include <string>

#include "apps/zelcam/commands/live_figures.h"

namespace zel::app {

// Pictures a second. resolution: the code.
constexpr int picturesPerSecond(int resolution) {
  constexpr int kRates[] = {15, 20, 25, 30};  // by the code's remainder
  return kRates[resolution % 4];
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
