#pragma once

#include <string_view>

namespace zel::platform {

// Posted by the host on the notification centre, without values, when it enters the background and when it becomes
// active again.
inline constexpr std::string_view kApplicationDidEnterBackgroundNotification =
    "UIApplicationDidEnterBackgroundNotification";
inline constexpr std::string_view kApplicationDidBecomeActiveNotification = "UIApplicationDidBecomeActiveNotification";

}  // namespace zel::platform
