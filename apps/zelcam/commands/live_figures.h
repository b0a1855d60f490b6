#pragma once

#include <ZELTarkaSDK/EncodedStreamStatistics.h>
#include <ZELTarkaSDK/OutputReport.h>

#include <nlohmann/json.hpp>
#include <string>

namespace zel::app {

// The summary of a live stream.
struct LiveFigures {
  EncodedStreamStatistics stream;
  std::vector<OutputReport> outputs;
  double seconds = 0;           // since the camera was connected
  double cpuSeconds = 0;        // of the whole process
  std::int64_t peakMemory = 0;  // bytes, also
};

nlohmann::ordered_json jsonOf(const LiveFigures& figures);

// Lines for people.
std::vector<std::string> linesOf(const LiveFigures& figures);

// The progress line.
std::string progressOf(const LiveFigures& figures);

}  // namespace zel::app
