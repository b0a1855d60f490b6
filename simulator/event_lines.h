#pragma once

#include <functional>
#include <string>

#include "simulator/simulated_camera.h"

namespace zel::simulator {

using CameraHappening = std::function<void(SimulatedCamera&)>;

// Parses a line that triggers an event, such as "battery 1 40".
// Errors: an empty function; `error` then says what is wrong.
CameraHappening readEventLine(const std::string& line, std::string& error);

// One line for each event of readEventLine().
extern const char kEventHelp[];

}  // namespace zel::simulator
