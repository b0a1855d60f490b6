#pragma once

#include <string>

#include <ZELTarkaSDK/platform/documents.h>

namespace zel::platform {

// A folder of the file system, made with mode 0700 when it is first asked for, so that a host that keeps no files
// leaves none behind.
class LinuxDocuments final : public Documents {
 public:
  // chosen: the folder; empty: $XDG_DATA_HOME/zelcam, else ~/.local/share/zelcam. A relative $XDG_DATA_HOME counts as
  // none.
  explicit LinuxDocuments(const std::string& chosen);

  // Errors: empty where the folder cannot be made, or neither variable leads to one.
  std::string folder() override;

 private:
  const std::string path_;
};

}  // namespace zel::platform
