// Takes a photo and saves the camera's picture.
//
//   take_a_photo FILE.jpg

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <fstream>
#include <string>

#include "connect.h"

int main(int count, char** arguments) {
  if (count != 2) return fail("usage: take_a_photo FILE.jpg");
  const auto platform = makePlatform();
  if (!platform) return 1;
  zel::CameraStack stack(platform->ports());
  if (!connect(*platform, stack.accessory())) return 1;

  std::string failure = "the camera sent no picture";
  const auto save = [&](const std::optional<ZELError>& error, const auto& name, const std::optional<ZELData>& picture) {
    platform->stopMainQueue();
    if (error) {
      failure = "the photo failed: " + error->domain + " " + std::to_string(error->code);
      return;
    }
    const auto bytes = picture.value_or(ZELData()).bytes();
    std::ofstream file(arguments[1], std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    failure = file.flush() ? "" : "the picture cannot be written";
    std::cout << name.value_or("a photo") << ": " << bytes.size() << " bytes\n";
  };
  // save gets a refusal only if there is a handler of the reply, even an empty one.
  const auto stored = [](const auto&, std::uint32_t, std::uint64_t, const auto&) {};
  // Position and orientation may be unknown.
  stack.ucd().msgCmdShutterWithGps({}, {}, {}, stored, save);
  platform->runMainQueueFor(30);
  return failure.empty() ? 0 : fail(failure);
}
