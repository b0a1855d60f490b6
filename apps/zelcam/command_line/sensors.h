#pragma once

#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/ZELMediaGps.h>
#include <ZELTarkaSDK/ZELMediaGyro.h>
#include <ZELTarkaSDK/ZELMediaOrientation.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// Position and motion from the sensor options; zeros by default.
struct Sensors {
  std::shared_ptr<const ZELMediaGps> gps;
  std::shared_ptr<const ZELMediaGyro> gyro;
  std::shared_ptr<const ZELMediaOrientation> orientation;
  std::optional<ZELData> extra;  // the bytes of the --extra file
};

// --gps, --gyro, --orientation and --extra, for the commands that take them, before options of their own.
std::vector<Option> sensorOptionsAnd(std::vector<Option> others);

// The values of those options.
// Errors: nothing; `error` then names the option and its allowed values.
std::optional<Sensors> sensorsIn(const Values& values, std::string& error);

}  // namespace zel::app
