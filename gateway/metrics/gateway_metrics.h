#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <ZELTarkaSDK/CameraStatistics.h>

#include "gateway/cameras/held_status.h"
#include "gateway/feed/live_feed.h"
#include "gateway/outputs/output_request.h"

namespace zel::gateway {

// What one camera has counted.
struct CameraMetrics {
  std::string serialNumber;
  CameraStatus status = CameraStatus::absent;
  CameraStatistics statistics;
  FeedStatistics feed;
  std::vector<OutputStatus> outputs;
};

// What the process has used.
//
// Units: seconds, bytes; the start in seconds since 1970.
struct ProcessMetrics {
  double processorTime = 0, start = 0;
  std::uint64_t residentMemory = 0, openDescriptors = 0;
};

// Of this process, as the kernel tells; zeros where it does not.
ProcessMetrics processMetrics();

// All of it in Prometheus's text format. Names bear their base units, and what only grows ends in _total.
std::string metricsText(const ProcessMetrics& process, const std::vector<CameraMetrics>& cameras);

}  // namespace zel::gateway
