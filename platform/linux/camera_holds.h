#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>

#include "base/mutex.h"
#include "platform/linux/camera_lock.h"

namespace zel::platform {

// One session's use of its camera. The lock stays as long as the object does, which is until the streams are closed.
class CameraUse {
 public:
  virtual ~CameraUse() = default;

  // The session counts no more: the camera may be used by another one of this process.
  //
  // Thread: any thread.
  virtual void letGo() = 0;
};

// Which cameras a platform has. A camera is taken with its first session, has one session at a time that counts, and is
// kept between its sessions, so that a host that waits for its camera does not lose it to another program.
//
// Thread: any thread.
class CameraHolds {
 public:
  // program: what others are told of this one. forGood: nothing is given back before the object goes.
  CameraHolds(std::string busFolder, std::string program, bool forGood);
  // Gives back what has no session.
  ~CameraHolds();
  CameraHolds(const CameraHolds&) = delete;
  CameraHolds& operator=(const CameraHolds&) = delete;

  // One of the three is there.
  struct Taken {
    std::shared_ptr<CameraUse> use;
    std::optional<CameraUser> user;
    std::string fault;
    bool isNew = false;  // it was not kept before
  };
  Taken take(const std::string& camera);

  // From now on a camera is kept between its sessions, or given back with its session.
  void keepBetweenSessions(bool keep);
  // Gives back every camera without a session; that one alone.
  void giveBack();
  void giveBack(const std::string& camera);

  enum class State {
    free,  // given back, or never taken
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
