#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "apps/zelcam/link/camera_link.h"

namespace zel::app {

// Asks the camera for its lens offset, as text, and waits for the answer. what: the command's name, for people.
// typeInfo: the camera's code for what the offset is for.
// Returns kDone; else says what is wrong and returns the exit status.
int askLensOffset(CameraLink& link, std::string_view what, std::uint8_t typeInfo, std::string& offset);

}  // namespace zel::app
