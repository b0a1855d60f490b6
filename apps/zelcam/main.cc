// zelcam: the command-line host. This file is its wiring: options, commands, and what they end with.

#include <ZELTarkaSDK/LinuxPlatform.h>

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "apps/zelcam/devices.h"
#include "apps/zelcam/interrupt.h"
#include "apps/zelcam/monitor.h"
#include "apps/zelcam/output.h"
#include "apps/zelcam/settings.h"

namespace {

using namespace zel::app;

struct CommandLine {
  Settings settings;
  bool watch = false;
  std::optional<double> seconds;
  CLI::App app{"Drives a 360-degree camera.", "zelcam"};
  CLI::App* devices = nullptr;
  CLI::App* monitor = nullptr;
};

void describe(CommandLine& line) {
  CLI::App& app = line.app;
  app.set_version_flag("--version", "zelcam 0.1.0");
  app.require_subcommand(1);
  app.add_option("--accessories", line.settings.accessories, "folder of the accessory bus (default: $ZEL_ACCESSORIES)");
  app.add_option("--camera", line.settings.camera, "serial number of the camera; default: the first")
      ->envname("ZEL_CAMERA");
  app.add_option("--timeout", line.settings.timeout, "seconds to wait for a camera, and for a reply")
      ->check(CLI::Range(0.0, 86400.0))
      ->capture_default_str();
  app.add_flag("--json", line.settings.json, "one JSON object a line");
  app.add_flag("--verbose", line.settings.verbose, "say more on standard error");

  line.devices = app.add_subcommand("devices", "accessories present");
  line.devices->footer("Example: zelcam devices --watch");
  line.devices->add_flag("--watch", line.watch, "report plugging and unplugging until stopped");

  line.monitor = app.add_subcommand("monitor", "the link: status, frames and bytes a second, drops, clock");
  line.monitor->footer("Example: zelcam --json monitor --seconds 10");
  line.monitor->add_option("--seconds", line.seconds, "end that long after the first frame")
      ->check(CLI::Range(0.0, 1e9));
}

int runCommand(CommandLine& line) {
  std::string error;
  const auto platform = zel::LinuxPlatform::create({.accessoriesFolder = line.settings.accessories, .warn = {}}, error);
  if (!platform) {
    say("zelcam: " + error);
    return kNoCamera;
  }
  if (line.settings.verbose) {
    say("zelcam: the accessory bus is " + zel::LinuxPlatform::accessoriesFolder(line.settings.accessories));
  }
  stopMainQueueOnInterrupt(*platform);
  const int status = line.devices->parsed() ? runDevices(*platform, line.settings, line.watch)
                                            : runMonitor(*platform, line.settings, line.seconds);
  detachInterrupts();
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  blockInterrupts();
  CommandLine line;
  describe(line);
  try {
    line.app.parse(argc, argv);
  } catch (const CLI::ParseError& fault) {
    return line.app.exit(fault) == 0 ? kDone : kWrongUsage;
  }
  return runCommand(line);
}
