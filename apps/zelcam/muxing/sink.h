#pragma once

#include <cstdint>

#include "apps/zelcam/muxing/media_packet.h"

namespace zel::app {

// Packets that a format makes nothing of.
struct LeftOut {
  std::uint64_t pictures = 0, audioFrames = 0;
};

// Where one output's packets end up: a file, or one connection to a server.
// Thread: one at a time, but for endWithin().
class Sink {
 public:
  virtual ~Sink() = default;

  // Begins; the first call.
  // Errors: what went wrong.
  virtual Fault open(const StreamHeaders& headers) = 0;
  // The next packet. One that the format makes nothing of is left out.
  // Errors: likewise; the sink is then good for nothing but destruction.
  virtual Fault write(const MediaPacket& packet) = 0;
  // Ends it well; the last call. A sink that is destroyed without it leaves what it has as it is.
  virtual Fault finish() = 0;

  // What was left out so far.
  virtual LeftOut leftOut() const { return {}; }

  // What waits for somebody else, now or later, fails when that many seconds are over.
  // Thread: any thread.
  virtual void endWithin(double /*seconds*/) {}
};

}  // namespace zel::app
