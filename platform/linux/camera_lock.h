#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/unique_descriptor.h"

namespace zel::platform {

// The process that holds a camera.
struct CameraUser {
  std::int64_t process = 0;  // 0: unknown
  std::string program;
};

// The lock of one camera on one bus. Only one object on this machine holds it at a time, in this process or another. It
// is released when its process ends in any way. It is advisory: a program can still connect to the camera without it.
//
// It is a lock on a file that names its holder, in a folder next to the bus's: for /run/zel/bus, /run/zel/bus.locks. If
// that cannot be created, the folder is .locks inside the bus's folder. File and folder are removed with the lock.
class CameraLock {
 public:
  // Exactly one of the three is set.
  struct Taken {
    std::shared_ptr<CameraLock> lock;
    std::optional<CameraUser> user;  // of another holder
    std::string fault;               // why the lock cannot be taken
  };

  // Whether a lock that is just being taken or released is waited for, a tenth of a second at most.
  enum class Patience { none, some };

  // camera: its name on the bus. program: the holder's name for other programs.
  static Taken take(const std::string& busFolder, const std::string& camera, const std::string& program,
                    Patience patience = Patience::some);

  CameraLock(std::string folder, std::string path, UniqueDescriptor file);
  ~CameraLock();
  CameraLock(const CameraLock&) = delete;
  CameraLock& operator=(const CameraLock&) = delete;

 private:
  const std::string folder_;
  const std::string path_;
  const UniqueDescriptor file_;
};

// The lock file's name for a camera: percent-encoded, and shortened if too long.
std::string lockFileName(const std::string& camera);

}  // namespace zel::platform
