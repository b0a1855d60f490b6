#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <ZELTarkaSDK/OutputReport.h>
#include <ZELTarkaSDK/Result.h>

#include "gateway/outputs/output_request.h"

namespace zel::gateway {

// One stream of a camera, which runs while this object lives, and begins again with the camera after a loss.
//
// Thread: any thread. The destructor waits until its outputs have ended, as removeOutput() does: files are written
//         wholly, servers get five seconds.
class OutputStream {
 public:
  virtual ~OutputStream() = default;

  // As CameraStream has them.
  virtual Result<int> addOutput(const std::string& address) = 0;
  virtual Result<OutputReport> removeOutput(int id) = 0;
  virtual std::vector<OutputReport> outputs() const = 0;
  // Why it cannot go on; nothing while it can.
  virtual std::optional<std::string> failure() const = 0;
};

// Where a camera's streams come from.
//
// Thread: any thread.
class OutputStreams {
 public:
  virtual ~OutputStreams() = default;

  // Begins the camera's own stream, or a stitched one of that size. Does not wait for the camera.
  //
  // Errors: why it cannot be begun.
  virtual Result<std::unique_ptr<OutputStream>> begin(const std::optional<StitchedSize>& stitched) = 0;
};

}  // namespace zel::gateway
