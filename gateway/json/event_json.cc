#include "gateway/json/event_json.h"

#include <ZELTarkaSDK/ZELCameraNotificationProtocol.h>

#include <algorithm>
#include <iterator>
#include <type_traits>
#include <utility>
#include <variant>

#include "gateway/json/json_line.h"

namespace zel::gateway {
namespace {

using nlohmann::ordered_json;

constexpr std::pair<ZELCameraEvent, const char*> kEventNames[] = {
    {ZELCameraEvent::firmwareUpdateDone, "firmwareUpdateDone"},
    {ZELCameraEvent::recordAutoSplit, "recordAutoSplit"},
    {ZELCameraEvent::batteryUpdate, "batteryUpdate"},
    {ZELCameraEvent::batteryLow, "batteryLow"},
    {ZELCameraEvent::batteryShutDown, "batteryShutDown"},
    {ZELCameraEvent::cardState, "cardState"},
    {ZELCameraEvent::keyPressed, "keyPressed"},
    {ZELCameraEvent::mediaOffset, "mediaOffset"},
    {ZELCameraEvent::recordCardRunout, "recordCardRunout"},
    {ZELCameraEvent::recordTimeRunout, "recordTimeRunout"},
    {ZELCameraEvent::gyroData, "gyroData"},
    {ZELCameraEvent::shutterState, "shutterState"},
    {ZELCameraEvent::deleteProgress, "deleteProgress"},
};

const char* eventName(std::int64_t type) {
  const auto* const found =
      std::ranges::find(kEventNames, ZELCameraEvent{type}, &std::pair<ZELCameraEvent, const char*>::first);
  return found != std::end(kEventNames) ? found->second : "unknown";
}

ordered_json fieldJson(const ZELMessageFields::Value& value) {
  return std::visit(
      [](const auto& one) -> ordered_json {
        using T = std::decay_t<decltype(one)>;
        if constexpr (std::is_integral_v<T> || std::is_same_v<T, std::string>) return one;
        if constexpr (std::is_same_v<T, ZELError>) return errorJson(one);
        return nullptr;
      },
      value);
}

}  // namespace

ordered_json eventJson(std::int64_t type, const std::optional<ZELMessageFields>& value, const std::string& timeOfDay) {
  ordered_json fields = ordered_json::object();
  if (value) {
    for (const auto& [key, field] : value->all()) fields[key] = fieldJson(field);
  }
  return {{"event", type}, {"name", eventName(type)}, {"value", fields}, {"time", timeOfDay}};
}

}  // namespace zel::gateway
