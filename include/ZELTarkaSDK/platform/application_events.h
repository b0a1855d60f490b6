#pragma once

#include <string_view>

namespace zel::platform {

// What the host tells of itself on the notification centre, without any values: it is no longer seen, it is seen and
// used again.
inline constexpr std::string_view kApplicationDidEnterBackgroundNotification =
    "UIApplicationDidEnterBackgroundNotification";
inline constexpr std::string_view kApplicationDidBecomeActiveNotification = "UIApplicationDidBecomeActiveNotification";

}  // namespace zel::platform
