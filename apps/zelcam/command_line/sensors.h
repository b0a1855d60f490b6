#pragma once

#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/ZELData.h>

#include <optional>
#include <string>
#include <vector>

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// Position and motion from the sensor options; zeros by default.
struct Sensors {
  ZELGpsData gps;
  ZELGyroData gyro;
  ZELOrientationData orientation;
  std::optional<ZELData> extra;  // the bytes of the --extra file
};

// --gps, --gyro, --orientation and --extra, for the commands that take them, before options of their own.
std::vector<Option> sensorOptionsAnd(std::vector<Option> others);

// The values of those options.
// Errors: nothing; `error` then names the option and its allowed values.
std::optional<Sensors> sensorsIn(const Values& values, std::string& error);

}  // namespace zel::app
