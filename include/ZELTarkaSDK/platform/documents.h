#pragma once

#include <string>

namespace zel::platform {

// The host's folder for its user's files.
// Thread: any thread.
class Documents {
 public:
  virtual ~Documents() = default;

  // The documents folder, which exists when the call returns.
  // Errors: empty when there is none.
  virtual std::string folder() = 0;
};

}  // namespace zel::platform
