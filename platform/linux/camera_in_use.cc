#include <ZELTarkaSDK/CameraInUse.h>

namespace zel {

std::string CameraInUse::inWords() const {
  const std::string words = "camera " + camera + " is in use by ";
  if (process == 0) return words + "another program";
  return words + "process " + std::to_string(process) + (program.empty() ? "" : " (" + program + ")");
}

}  // namespace zel
