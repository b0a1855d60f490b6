#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <ZELTarkaSDK/CameraValues.h>
#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// How far a transfer has come.
//
// Units: bytes; pictures.
struct ZEL_EXPORT TransferProgress {
  std::uint64_t done = 0;   // pictures that have arrived, or bytes that have been sent
  std::uint64_t total = 0;  // pictures that are expected, or bytes of the file

  bool operator==(const TransferProgress&) const = default;
};

// What is stored with a photo. Records that are all zero stand for what is not known.
struct ZEL_EXPORT CaptureOptions {
  ZELGpsData position = {};
  ZELGyroData motion = {};
  ZELOrientationData orientation = {};
  std::optional<ZELData> extraInfo = {};  // JSON

  // More of pictures than that ends the call with `platform`, and the link with it: the camera is not read any more
  // while it sends. All pictures of a bracket are in memory before the call ends. On the host's own ports nothing is
  // bounded.
  //
  // Units: bytes; 0 for no bound.
  std::uint64_t mostBytes = 0;

  // Called where the camera's callbacks run: once with 0 when the camera has stored the photo, and then whenever
  // another picture has arrived.
  std::function<void(const TransferProgress&)> progress = {};
};

// A photo, as it is stored on the card and as it has come.
struct ZEL_EXPORT Photo {
  StoredFile stored;
  std::optional<std::string> name;  // that came with the picture; absent where it is not ASCII
  ZELData jpeg;
};

// An exposure bracket.
struct ZEL_EXPORT PhotoSeries {
  StoredFile stored;
  std::vector<std::string> names;  // of the pictures; empty where one is not ASCII
  std::vector<ZELData> jpegs;      // in the order of their arrival
};

}  // namespace zel
