#pragma once

#include <optional>
#include <string>
#include <vector>

#include "apps/zelcam/command_line/command.h"
#include "gateway/json/sensors.h"

namespace zel::app {

using gateway::Sensors;

// --gps, --gyro, --orientation and --extra, for the commands that take them, before options of their own.
std::vector<Option> sensorOptionsAnd(std::vector<Option> others);

// The values of those options.
// Errors: nothing; `error` then names the option and its allowed values.
std::optional<Sensors> sensorsIn(const Values& values, std::string& error);

}  // namespace zel::app
