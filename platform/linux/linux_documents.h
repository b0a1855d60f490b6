#pragma once

#include <string>

#include <ZELTarkaSDK/platform/documents.h>

namespace zel::platform {

// A folder that is created with mode 0700 at the first call, so that a host without files leaves no folder.
class LinuxDocuments final : public Documents {
 public:
  // chosen: the folder; empty: $XDG_DATA_HOME/zelcam, else ~/.local/share/zelcam. A relative $XDG_DATA_HOME is ignored.
  explicit LinuxDocuments(const std::string& chosen);

  // Errors: empty when the folder cannot be created, or neither variable is set.
  std::string folder() override;

 private:
  const std::string path_;
};

}  // namespace zel::platform
