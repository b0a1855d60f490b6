#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "apps/zelcam/link/camera_link.h"

namespace zel::app {

// Requests the camera's lens offset as text, and waits for the reply. what: the command's name, for people. typeInfo:
// the camera's code for the offset's use.
// Returns kDone; otherwise prints what is wrong and returns the exit status.
int askLensOffset(CameraLink& link, std::string_view what, std::uint8_t typeInfo, std::string& offset);

}  // namespace zel::app
