#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/media_library.h>
#include "apps/zelcam/command.h"
#include "apps/zelcam/muxing/output_address.h"

namespace zel::app {

// The options of `zelcam live`.
// Units:  pixels, bits a second, seconds, degrees.
struct LiveOptions {
  std::vector<OutputAddress> outputs;
  int resolution = 3;
  std::int32_t width = 1920;
  std::int32_t height = 960;
  std::int64_t bitrate = 8'000'000;
  std::optional<double> duration;
  int decoderThreads = 1;
  bool stitch = true;
  std::optional<platform::RgbaImage> logo;
  double logoAngle = 0;
  bool removePurple = false;
  std::optional<double> reconnect;

  bool usesStandardOutput() const;
};

// Errors: nothing; `complaint` then says what is wrong.
std::optional<LiveOptions> liveOptionsIn(const Values& values, std::string& complaint);

}  // namespace zel::app
