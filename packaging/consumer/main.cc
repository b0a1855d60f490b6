// A host outside the project, with nothing but an installed copy of the libraries: it looks for cameras in a folder.

#include <ZELTarkaSDK/Camera.h>
#include <ZELTarkaSDK/ZELTarkaSDK.h>
#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
  if (argc != 2) return std::fprintf(stderr, "usage: consumer FOLDER\n"), 2;
  std::string fault;
  const auto platform = zel::LinuxPlatform::create({.accessoriesFolder = argv[1]}, fault);
  if (!platform) return std::fprintf(stderr, "%s\n", fault.c_str()), 1;
  const zel::LinuxMedia media(platform->ports());
  zel::CameraStack stack(media.ports());
  const bool attached = stack.accessory().openCamera() != nullptr;
  zel::Outputs outputs;
  outputs.add(*zel::parseOutputAddress("rtmp://localhost/live"));
  const auto png = zel::pngOf(*zel::platform::MemoryPixelBuffer::filled(2, 2, 0, 128, 128));
  const auto camera =
      zel::Camera::open({.openTimeLimit = std::chrono::milliseconds(1), .accessoriesFolder = argv[1]}).get();
  if (camera) return std::fprintf(stderr, "there is a camera\n"), 1;
  std::printf("ZELTarkaSDK %s (%.1f), %zu accessories, a camera: %s, decodes: %s, offset %s, output %s, a PNG: %s\n",
              ZELTarkaSDKVersionString, ZELTarkaSDKVersionNumber,
              platform->ports().accessories.connectedAccessories().size(), attached ? "yes" : "no",
              media.ports().videoDecoders != nullptr ? "yes" : "no",
              getOffsetFromZELMediaOffset(getMediaOffsetFromOffset("1_1_2_3_4_5_6_7_8_9")).c_str(),
              outputs.reports().at(0).name.c_str(), png ? "yes" : "no");
  return 0;
}
