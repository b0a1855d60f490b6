#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/unique_descriptor.h"

namespace zel::platform {

// Who has a camera.
struct CameraUser {
  std::int64_t process = 0;  // 0: it has not told
  std::string program;
};

// The lock of one camera of one bus. One object on this machine has it at a time, in this process or another, and it
// ends with its process however that ends. It is advisory: whoever connects to the camera without it is not stopped.
//
// It is a lock on a file that names its holder, in a folder beside the bus's: for /run/zel/bus, /run/zel/bus.locks.
// Where none can be made there, it is .locks inside the bus's folder. File and folder go with the lock.
class CameraLock {
 public:
  // One of the three is there.
  struct Taken {
    std::shared_ptr<CameraLock> lock;
    std::optional<CameraUser> user;  // somebody else's
    std::string fault;               // why there can be no lock
  };

  // camera: what the bus knows it by. program: what others are told of the holder.
  static Taken take(const std::string& busFolder, const std::string& camera, const std::string& program);

  CameraLock(std::string folder, std::string path, UniqueDescriptor file);
  ~CameraLock();
  CameraLock(const CameraLock&) = delete;
  CameraLock& operator=(const CameraLock&) = delete;

 private:
  const std::string folder_;
  const std::string path_;
  const UniqueDescriptor file_;
};

// The file's name for a camera: percent-encoded, and shortened where it were too long for one.
std::string lockFileName(const std::string& camera);

}  // namespace zel::platform
