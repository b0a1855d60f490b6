#pragma once

#include <memory>
#include <string>

#include "base/mutex.h"
#include "platform/linux/camera_lock.h"

namespace zel::platform {

// One session's use of its camera. The lock is held until this object is destroyed, which is after the streams are
// closed.
class CameraUse {
 public:
  virtual ~CameraUse() = default;

  // The session no longer counts: another session of this process may use the camera.
  //
  // Thread: any thread.
  virtual void letGo() = 0;
};

// The cameras that a platform holds. A camera is locked with its first session, has one active session at a time, and
// is kept between sessions, so that a waiting host does not lose it to another program.
//
// Thread: any thread.
class CameraHolds {
 public:
  // program: the name that other programs are told. forGood: nothing is released before the object is destroyed.
  CameraHolds(std::string busFolder, std::string program, bool forGood);
  // Releases the cameras without a session.
  ~CameraHolds();
  CameraHolds(const CameraHolds&) = delete;
  CameraHolds& operator=(const CameraHolds&) = delete;

  // Exactly one of the three is set.
  struct Taken {
    std::shared_ptr<CameraUse> use;
    std::optional<CameraUser> user;
    std::string fault;
    bool isNew = false;  // it was not held before
  };
  Taken take(const std::string& camera, CameraLock::Patience patience = CameraLock::Patience::some);

  // Sets whether a camera is kept between its sessions, or released with its session.
  void keepBetweenSessions(bool keep);
  // Releases every camera without a session, or only that one.
  void giveBack();
  void giveBack(const std::string& camera);

  enum class State {
    free,  // released, or never locked
    kept,  // without a session
    inSession,
  };
  State of(const std::string& camera);

 private:
  struct Holds;
  class Use;

  const std::string busFolder_;
  const std::string program_;
  const bool forGood_;
  const std::shared_ptr<Holds> holds_;  // with the uses
};

}  // namespace zel::platform
