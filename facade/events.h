#pragma once

#include <ZELTarkaSDK/Camera.h>
#include <ZELTarkaSDK/ZELMessageFields.h>

#include <cstdint>
#include <optional>

namespace zel {

// An event of the command layer as the camera object gives it.
Event eventOf(std::int64_t type, const std::optional<ZELMessageFields>& value);

}  // namespace zel
