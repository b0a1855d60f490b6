#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zel::gateway {

// The topics of the gateway's cameras:
//
//   zel/SERIAL/status              {"serial", "name", "firmware", "status", "busy"}, retained
//   zel/SERIAL/availability        "online" while the camera can be asked, else "offline", retained
//   zel/SERIAL/info                what `zelcam --json info` prints, retained
//   zel/SERIAL/statistics          what the camera has counted, every ten seconds, retained
//   zel/SERIAL/events/NAME         the newest event of each name, as `zelcam --json events` prints it, retained
//   zel/SERIAL/command/NAME        commands to the camera, answered under
//   zel/SERIAL/answer/NAME         {"id", "status", "body"}
//   zel/gateways/NAME/availability "online", or "offline" by the broker's hand once the gateway is gone; retained
//
// Of SERIAL and NAME everything but letters, digits, ".", "_" and "-" is percent-encoded, so that no name makes a level
// or a wildcard.
std::string topicPart(std::string_view name);

inline std::string cameraTopic(std::string_view serialNumber, std::string_view what) {
  return "zel/" + topicPart(serialNumber) + "/" + std::string(what);
}
inline std::string gatewayTopic(std::string_view gateway) {
  return "zel/gateways/" + topicPart(gateway) + "/availability";
}

inline constexpr std::string_view kOnline = "online", kOffline = "offline";

// The last level of a command's topic; nothing for any other topic.
std::optional<std::string> commandIn(std::string_view topic, std::string_view serialNumber);

}  // namespace zel::gateway
