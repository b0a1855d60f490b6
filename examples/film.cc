// Films for so many seconds into one output, or several: files and servers. A width makes it a panorama.
//
//   film SECONDS WIDTH OUTPUT...        WIDTH 0: the camera's own pictures

#include <ZELTarkaSDK/Camera.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

int main(int count, char** arguments) {
  if (count < 4) return std::fprintf(stderr, "usage: film SECONDS WIDTH OUTPUT...\n"), 2;
  auto camera = zel::Camera::open().get();
  if (!camera) return std::fprintf(stderr, "%s\n", camera.error().message.c_str()), 3;

  zel::StreamOptions options;
  options.outputs.assign(arguments + 3, arguments + count);
  const int width = std::atoi(arguments[2]);
  if (width > 0) options.stitched = zel::StitchedPictures{.width = width, .height = width / 2};
  auto stream = camera->stream(options).get();
  if (!stream) return std::fprintf(stderr, "%s\n", stream.error().message.c_str()), 1;

  std::this_thread::sleep_for(std::chrono::duration<double>(std::atof(arguments[1])));
  stream->stop();
  int failed = 0;
  for (const auto& output : stream->outputs()) {
    if (output.fault) ++failed;
    std::printf("%s: %llu pictures%s%s\n", output.name.c_str(), static_cast<unsigned long long>(output.pictures),
                output.fault ? ": " : "", output.fault.value_or("").c_str());
  }
  return failed == 0 ? 0 : 1;
}
