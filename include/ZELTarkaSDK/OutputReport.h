#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

enum class OutputState {
  waiting,     // the stream's headers have not come
  connecting,  // its file is being opened, or its server reached
  writing,     // takes packets; after finish(), writes those that are left
  retrying,    // lost its server, and waits before the next attempt
  finished,    // everything is written, or nothing ever came
  failed,      // given up; the report's fault says why
};

// What has become of an output.
//
// Units: milliseconds of latency, from a picture's arrival to its end in the file or on the wire.
struct ZEL_EXPORT OutputReport {
  int id = 0;  // as Outputs::add() returned it
  std::string name;
  OutputState state = OutputState::waiting;
  std::uint64_t pictures = 0, audioFrames = 0;  // written
  std::uint64_t bytes = 0;                      // of these
  std::uint64_t dropped = 0;                    // packets that came and were not written
  int connections = 0;
  std::optional<std::string> fault;             // why it ended before its time, or did not end well
  std::optional<int> medianLatency, latency99;  // that half of the pictures, and 99 in 100, did not exceed
  int retries = 0;                              // how often a server was tried again, also in vain
};

}  // namespace zel
