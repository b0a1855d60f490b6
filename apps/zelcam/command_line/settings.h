#pragma once

#include <string>

namespace zel::app {

// The global options, and the command's name.
struct Settings {
  std::string command;      // its name
  std::string accessories;  // folder of the bus; empty for the default
  std::string camera;       // serial number; empty for the first
  double timeout = 10;      // seconds
  bool direct = false;      // never through a gateway
  std::string log;          // file of the diagnostics; empty for none
  bool json = false;
  bool verbose = false;
};

// The program's exit status.
enum ExitStatus {
  kDone = 0,
  kRefused = 1,  // the camera refused or failed
  kWrongUsage = 2,
  kNoCamera = 3,       // no camera, or another program uses it; no reply in time, or the camera was lost
  kInterrupted = 130,  // interrupted; 128 plus the number of SIGINT, as in shells
};

}  // namespace zel::app
