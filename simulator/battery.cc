#include "simulator/battery.h"

#include "simulator/camera_events.h"

namespace zel::simulator {

std::vector<Bytes> drain(Battery& battery) {
  if (battery.powerType != kOnBattery || battery.level == 0) return {};
  --battery.level;
  std::vector<Bytes> events{batteryEvent(battery.powerType, battery.level)};
  if (battery.level == kLowBattery) events.push_back(batteryLowEvent(battery.level));
  if (battery.level == 0) events.push_back(shutDownEvent({0}));
  return events;
}

}  // namespace zel::simulator
