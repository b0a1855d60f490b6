#pragma once

#include <ZELTarkaSDK/EncodedStream.h>
#include <ZELTarkaSDK/OutputAddress.h>

#include <optional>
#include <string>
#include <vector>

#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/platform/media_library.h>

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// The options of `zelcam live`.
// Units:  pixels, bits a second, seconds, degrees.
struct LiveOptions {
  std::vector<OutputAddress> outputs;
  std::vector<std::string> outputTexts;  // the same as they were given
  int resolution = kSmallestPreview;
  StitchedPictures stitched;
  std::optional<double> duration;
  int decoderThreads = 1;
  bool stitch = true;
  std::optional<double> reconnect;

  bool usesStandardOutput() const;
};

// Errors: nothing; `complaint` then says what is wrong.
std::optional<LiveOptions> liveOptionsIn(const Values& values, std::string& complaint);

}  // namespace zel::app
