#pragma once

#include <ZELTarkaSDK/LiveStatistics.h>
#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/PreviewStatistics.h>

#include <cstdint>
#include <optional>
#include <string>

namespace zel {

// Pictures a second. resolution: the preview's code; one that no camera knows counts as the smallest preview's.
constexpr int picturesPerSecond(int resolution) {
  return previewFormat(static_cast<std::uint64_t>(resolution)).value_or(kPreviewFormats[kSmallestPreview]).fps;
}

// What became of a run's pictures and sound before they came to the timeline.
struct FeedFigures {
  PreviewStatistics preview;
  LiveStatistics live;

  void add(const FeedFigures& more);
};

// Where an encoded stream comes from during one run.
//
// Thread: starts and stops on one thread, the rest on any.
class StreamFeed {
 public:
  virtual ~StreamFeed() = default;

  // Switches the camera's preview and sound on.
  virtual void start() = 0;
  // Ends the run; nothing is handed on any more when it returns.
  virtual void stop() = 0;

  // Why no picture comes, where that shows in the figures alone.
  virtual std::optional<std::string> failure() const { return std::nullopt; }
  virtual FeedFigures figures() const = 0;
};

}  // namespace zel
