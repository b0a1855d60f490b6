#pragma once

#include <ZELTarkaSDK/LiveStatistics.h>
#include <ZELTarkaSDK/PreviewStatistics.h>

#include <nlohmann/json.hpp>
#include <span>
#include <string>

#include "outputs/output.h"
#include "outputs/stream_writer.h"

namespace zel::app {

// What became of the camera's pictures and sound before they came to the outputs, over all connections.
struct FeedFigures {
  PreviewStatistics preview;
  LiveStatistics live;

  void add(const FeedFigures& more);
};

// Everything that the end of a live stream tells.
struct LiveFigures {
  FeedFigures feed;
  WrittenStream written;
  std::vector<OutputReport> outputs;
  double seconds = 0;           // since the camera was there
  double cpuSeconds = 0;        // of the whole process
  std::int64_t peakMemory = 0;  // bytes, likewise
  bool stitched = true;
};

nlohmann::ordered_json jsonOf(const LiveFigures& figures);

// Lines for people.
std::vector<std::string> linesOf(const LiveFigures& figures);

// One line while it runs.
std::string progressOf(const LiveFigures& figures);

}  // namespace zel::app
