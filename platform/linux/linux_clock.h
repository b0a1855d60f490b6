#pragma once

#include "platform/clock.h"

namespace zel::platform {

// The system's clock.
class LinuxClock final : public Clock {
 public:
  double absoluteTime() const override;
  void sleepFor(double seconds) override;
};

}  // namespace zel::platform
