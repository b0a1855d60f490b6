#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <string>

#include "apps/zelcam/command_line/sensors.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/link/answer.h"
#include "apps/zelcam/link/bus.h"
#include "apps/zelcam/link/camera_link.h"

namespace zel::app {
namespace {

using RecordedFile = Answer<std::uint32_t, std::uint64_t, std::optional<std::string>>;

int tellFile(const RecordedFile& answer, const Settings& settings) {
  const auto& [time, size, name] = answer.values;
  return tellDone(
      settings.json,
      {{"record", "stop"},
       {"fileName", name ? nlohmann::ordered_json(*name) : nullptr},
       {"fileTime", time},
       {"fileSize", size},
       {std::string(key::fileSize), size}},  // the interface's spelling of the same
      fmt::format("recorded {}: file time {}, {} bytes", printable(name.value_or("(no name)")), time, size));
}

int stop(CameraLink& link, const Settings& settings) {
  const auto answer = std::make_shared<RecordedFile>();
  link.stack().ucd().msgCmdStopRecordWithRebackBlock(keepIn(answer, link.platform()));
  link.sayAsked();
  const int status = link.waitForAnswer("record stop", *answer);
  return status == kDone ? tellFile(*answer, settings) : status;
}

int startOrCancel(CameraLink& link, const std::string& action, const Sensors& sensors, const Settings& settings) {
  const auto answer = std::make_shared<Answer<>>();
  ZELCameraUCD& ucd = link.stack().ucd();
  const ZELCameraUCD::ErrorBlock handler = keepIn(answer, link.platform());
  if (action == "cancel") {
    ucd.msgCmdRecordCancelWithRebackBlock(handler);
  } else if (sensors.extra) {
    ucd.newMsgCmdStartRecordExtraWithGps(sensors.gps, sensors.gyro, sensors.orientation, sensors.extra, handler);
  } else {
    ucd.newMsgCmdStartRecordWithGps(sensors.gps, sensors.gyro, sensors.orientation, handler);
  }
  const int status = link.waitForAnswer("record " + action, *answer);
  if (status != kDone) return status;
  return tellDone(settings.json, {{"record", action}}, action == "start" ? "recording" : "recording cancelled");
}

}  // namespace

int runRecord(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  std::string complaint;
  const auto sensors = sensorsIn(invocation.values, complaint);
  if (!sensors) return complain(kWrongUsage, "record", complaint);
  const std::string action = invocation.values.text("ACTION");
  return withCamera(settings, [&](CameraLink& link) {
    return action == "stop" ? stop(link, settings) : startOrCancel(link, action, *sensors, settings);
  });
}

}  // namespace zel::app
