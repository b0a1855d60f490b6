// Makes a panorama of a camera's photo, with the metadata that viewers look for. OFFSET is the camera's lens offset, as
// getCameraMediaOffset() tells it. No camera is needed.
//
//   stitch_a_photo PHOTO.jpg OFFSET PANORAMA.jpg

#include <ZELTarkaSDK/LinuxMedia.h>
#include <ZELTarkaSDK/Panorama.h>
#include <ZELTarkaSDK/platform/ports.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "connect.h"

int main(int count, char** arguments) {
  if (count != 4) return fail("usage: stitch_a_photo PHOTO.jpg OFFSET PANORAMA.jpg");
  std::ifstream file(arguments[1], std::ios::binary);
  const std::vector<std::uint8_t> photo{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};

  const auto platform = makePlatform();
  if (!platform) return 1;
  const zel::LinuxMedia media(platform->ports());
  std::string fault;
  zel::PanoramaMaker maker(*media.ports().mediaLibrary, arguments[2]);
  const auto panorama = maker.panoramaOf(photo, fault);
  if (!panorama) return fault.empty() ? 1 : fail(std::string(arguments[1]) + ": " + fault);

  std::ofstream made(arguments[3], std::ios::binary);
  made.write(reinterpret_cast<const char*>(panorama->file.data()), static_cast<std::streamsize>(panorama->file.size()));
  if (!made.flush()) return fail("the panorama cannot be written");
  std::cout << arguments[3] << ": " << panorama->width << " x " << panorama->height << '\n';
}
