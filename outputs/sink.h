#pragma once

#include <cstdint>

#include <ZELTarkaSDK/MediaPacket.h>

#include "outputs/fault.h"

namespace zel {

// Packets that are invalid in the output's format.
struct LeftOut {
  std::uint64_t pictures = 0, audioFrames = 0;
};

// The destination of one output's packets: a file, or one connection to a server.
// Thread: one at a time, except endWithin().
class Sink {
 public:
  virtual ~Sink() = default;

  // Opens the output; the first call.
  //
  // Errors: what went wrong.
  virtual Fault open(const StreamHeaders& headers) = 0;
  // Writes the next packet. An invalid one is left out.
  // Errors: the same; the sink is then good for nothing but destruction.
  virtual Fault write(const MediaPacket& packet) = 0;
  // Completes the output; the last call. A sink that is destroyed without it leaves the output incomplete.
  virtual Fault finish() = 0;

  // The packets left out so far.
  virtual LeftOut leftOut() const { return {}; }

  // Makes current and later blocking calls fail after this many seconds.
  //
  // Thread: any thread.
  virtual void endWithin(double /*seconds*/) {}
};

}  // namespace zel
