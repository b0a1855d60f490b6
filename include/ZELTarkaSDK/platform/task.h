#pragma once

#include <functional>

namespace zel::platform {

// A task for a queue or a run loop. It runs once, or is destroyed without running when its run loop ends first.
using Task = std::function<void()>;

}  // namespace zel::platform
