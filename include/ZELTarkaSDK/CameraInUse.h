#pragma once

#include <cstdint>
#include <string>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// A camera that could not be opened because another process has it.
struct ZEL_EXPORT CameraInUse {
  std::string camera;        // its serial number, else its accessory file's name
  std::int64_t process = 0;  // 0: not known
  std::string program;

  // "camera E1A0001 is in use by process 4711 (zelcam live)"
  std::string inWords() const;
};

}  // namespace zel
