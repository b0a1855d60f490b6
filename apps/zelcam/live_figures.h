#pragma once

#include <ZELTarkaSDK/LiveStatistics.h>
#include <ZELTarkaSDK/PreviewStatistics.h>

#include <nlohmann/json.hpp>
#include <span>
#include <string>

#include "apps/zelcam/muxing/output.h"
#include "apps/zelcam/muxing/stream_writer.h"

namespace zel::app {

// Counters of the camera's pictures and sound before the outputs, over all connections.
struct FeedFigures {
  PreviewStatistics preview;
  LiveStatistics live;

  void add(const FeedFigures& more);
};

// The summary of a live stream.
struct LiveFigures {
  FeedFigures feed;
  WrittenStream written;
  std::vector<OutputReport> outputs;
  double seconds = 0;           // since the camera was connected
  double cpuSeconds = 0;        // of the whole process
  std::int64_t peakMemory = 0;  // bytes, of the whole process
  bool stitched = true;
};

nlohmann::ordered_json jsonOf(const LiveFigures& figures);

// Lines for people.
std::vector<std::string> linesOf(const LiveFigures& figures);

// The progress line.
std::string progressOf(const LiveFigures& figures);

}  // namespace zel::app
