#pragma once

#include <ZELTarkaSDK/platform/clock.h>

namespace zel::platform {

// The system's clock.
class LinuxClock final : public Clock {
 public:
  double absoluteTime() const override;
  double steadyTime() const override;
  void sleepFor(double seconds) override;
  // From $TZ, else the machine's time zone, read at each call.
  std::int64_t localTimeOffset(double absoluteTime) const override;
};

}  // namespace zel::platform
