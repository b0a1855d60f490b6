#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/platform/media_library.h>

namespace zel {

// An equirectangular picture as a JPEG file.
//
// Units: pixels.
struct ZEL_EXPORT Panorama {
  std::vector<std::uint8_t> file;
  int width = 0, height = 0;
};

// Makes panoramas of the camera's photos: as wide as the photo, with its EXIF data, and with the XMP properties by
// which viewers know a panorama. The heading is in them where the photo tells a direction from true north.
//
//   zel::PanoramaMaker maker(*media.ports().mediaLibrary, offset);
//   const auto panorama = maker.panoramaOf(photo, error);
//
// Owner:  the library must outlive the object.
//
// Thread: one at a time.
class ZEL_EXPORT PanoramaMaker {
 public:
  // offset: the camera's lens offset, as getCameraMediaOffset() tells it.
  PanoramaMaker(platform::MediaLibrary& library, std::string offset);
  ~PanoramaMaker();
  PanoramaMaker(const PanoramaMaker&) = delete;
  PanoramaMaker& operator=(const PanoramaMaker&) = delete;

  // photo: the camera's JPEG file.
  //
  // Errors: nothing; `error` then says what is wrong. It is empty where the picture could not be stitched: the library
  // has said why, as LinuxMedia::Options::warn tells.
  std::optional<Panorama> panoramaOf(std::span<const std::uint8_t> photo, std::string& error);

 private:
  struct State;
  const std::unique_ptr<State> state_;
};

}  // namespace zel
