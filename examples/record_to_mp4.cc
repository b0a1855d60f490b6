// Records the camera to an MP4 file: its own pictures and sound as they come, or stitched where a width is given.
//
//   record_to_mp4 FILE.mp4 SECONDS [RESOLUTION [WIDTH]]

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/EncodedStream.h>
#include <ZELTarkaSDK/LinuxMedia.h>
#include <ZELTarkaSDK/Outputs.h>

#include <cstdlib>

#include "connect.h"

int main(int count, char** arguments) {
  const auto address = zel::parseOutputAddress(count > 1 ? arguments[1] : "");
  if (count < 3 || count > 5 || !address) return fail("usage: record_to_mp4 FILE.mp4 SECONDS [RESOLUTION [WIDTH]]");
  const int resolution = count > 3 ? std::atoi(arguments[3]) : 3, width = count > 4 ? std::atoi(arguments[4]) : 0;
  const auto platform = makePlatform();
  if (!platform) return 1;
  const zel::LinuxMedia media(platform->ports());
  zel::CameraStack stack(media.ports());
  if (!connect(*platform, stack.accessory())) return 1;

  zel::Outputs outputs([](const std::string& line) { std::cerr << line << '\n'; });
  outputs.add(*address);
  zel::EncodedStream stream(outputs, {.length = static_cast<std::int64_t>(1e6 * std::atof(arguments[2])),
                                      .changed = [&] { platform->stopMainQueue(); }});
  if (width == 0) {
    stream.startCamera(stack, resolution);
  } else {
    stream.startStitched(stack, resolution, {.width = width, .height = width / 2});
  }
  // Waits for the first pictures too, and for those that come late.
  platform->runMainQueueFor(std::atof(arguments[2]) + 10);
  stream.stop();
  outputs.finish();
  if (const auto failure = stream.failure()) return fail(*failure);
  const zel::OutputReport report = outputs.reports().at(0);
  if (report.fault) return fail(*report.fault);
  if (report.pictures == 0) return fail("no picture came");
  std::cout << report.name << ": " << report.pictures << " pictures, " << report.audioFrames << " frames of sound\n";
}
