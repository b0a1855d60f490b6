#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "simulator/accessory_publisher.h"
#include "simulator/faults.h"

namespace zel::simulator {

struct SimulatorOptions {
  std::string accessoriesFolder;  // empty: the bus's default
  Identity identity;
  int resolution = 3;          // preview resolution code, 0 to 15
  int bitrate = 0;             // of the scene's pictures, see PreviewFormat
  int slices = 1;              // of each of them, see PreviewFormat
  std::string video, audio;    // files instead of the scene and its beeps, see MediaLibrary
  std::string storage;         // the folder of uploaded files; empty: a temporary one, removed at the end
  std::uint64_t cardSize = 0;  // bytes; 0: the usual card
  std::uint64_t seed = 1;
  Faults faults;
  std::function<double()> mediaSeconds;          // replaces the media's real time; called often
  bool once = false;                             // ends after the first connection has ended
  bool verbose = false;                          // prints every request of the host, as "request 0x0004"
  std::function<void(const std::string&)> warn;  // empty: standard error
};

}  // namespace zel::simulator
