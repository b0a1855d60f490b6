#pragma once

#include <string>

namespace zel::app {

// What stands before the command on the command line, and the command itself.
struct Settings {
  std::string command;      // its name
  std::string accessories;  // folder of the bus; empty for the default
  std::string camera;       // serial number; empty for the first
  double timeout = 10;      // seconds
  std::string log;          // file of the diagnostics; empty for none
  bool json = false;
  bool verbose = false;
};

// How the program ends.
enum ExitStatus {
  kDone = 0,
  kRefused = 1,  // the camera refused or failed
  kWrongUsage = 2,
  kNoCamera = 3,       // no camera, or another program has it; no answer in time, or the camera was lost
  kInterrupted = 130,  // stopped before it was done; 128 and the number of SIGINT, as shells have it
};

}  // namespace zel::app
