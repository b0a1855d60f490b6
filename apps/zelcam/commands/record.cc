#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/ZELMessageKeys.h>

#include <fmt/format.h>

#include <string>

#include "apps/zelcam/command_line/sensors.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/link/command_camera.h"

namespace zel::app {
namespace {

int tellFile(const StoredFile& file, const Settings& settings) {
  return tellDone(settings.json,
                  {{"record", "stop"},
                   {"fileName", file.name ? nlohmann::ordered_json(*file.name) : nullptr},
                   {"fileTime", file.time},
                   {"fileSize", file.sizeBytes},
                   {std::string(key::fileSize), file.sizeBytes}},  // the interface's spelling of the same
                  fmt::format("recorded {}: file time {}, {} bytes", printable(file.name.value_or("(no name)")),
                              file.time, file.sizeBytes));
}

int stop(Camera& camera, const Settings& settings) {
  auto asked = camera.stopRecording(limitsOf(settings));
  sayAsked(settings);
  const auto file = asked.get();
  return file ? tellFile(*file, settings) : tellFailure("record stop", file.error(), settings);
}

Pending<void> start(Camera& camera, const Sensors& sensors, const RequestOptions& limits) {
  const auto& [gps, gyro, orientation, extra] = sensors;
  if (extra) return camera.startRecordingWithExtraInfo(gps, gyro, orientation, extra, limits);
  return camera.startRecording(gps, gyro, orientation, limits);
}

int startOrCancel(Camera& camera, const std::string& action, const Sensors& sensors, const Settings& settings) {
  const RequestOptions limits = limitsOf(settings);
  const bool isStart = action == "start";
  const auto done = (isStart ? start(camera, sensors, limits) : camera.cancelRecording(limits)).get();
  if (!done) return tellFailure("record " + action, done.error(), settings);
  return tellDone(settings.json, {{"record", action}}, isStart ? "recording" : "recording cancelled");
}

}  // namespace

int runRecord(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  std::string complaint;
  const auto sensors = sensorsIn(invocation.values, complaint);
  if (!sensors) return complain(kWrongUsage, "record", complaint);
  const std::string action = invocation.values.text("ACTION");
  return withCamera(settings, [&](Camera& camera) {
    return action == "stop" ? stop(camera, settings) : startOrCancel(camera, action, *sensors, settings);
  });
}

}  // namespace zel::app
