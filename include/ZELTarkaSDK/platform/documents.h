#pragma once

#include <string>

namespace zel::platform {

// Where the host keeps the files of its user.
// Thread: any thread.
class Documents {
 public:
  virtual ~Documents() = default;

  // The documents folder, which is there when the call returns.
  // Errors: empty where there is none.
  virtual std::string folder() = 0;
};

}  // namespace zel::platform
