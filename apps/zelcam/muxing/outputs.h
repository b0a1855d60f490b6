#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "apps/zelcam/muxing/output.h"
#include "apps/zelcam/muxing/output_address.h"

namespace zel::app {

// All outputs of a stream.
// Thread: any thread; only finish() waits.
class Outputs {
 public:
  // tell: receives messages for people.
  // Thread: any thread, several at a time.
  Outputs(std::span<const OutputAddress> addresses, const std::function<void(const std::string&)>& tell);

  void begin(const StreamHeaders& headers);
  void put(const MediaPacket& packet);

  // Waits until all have ended: files are written completely, servers have a few seconds.
  void finish();

  bool haveAllFailed() const;
  std::vector<OutputReport> reports() const;

 private:
  std::vector<std::unique_ptr<Output>> outputs_;
};

}  // namespace zel::app
