#include "platform/linux/camera_holds.h"

#include <unistd.h>

#include <utility>
#include <vector>

namespace zel::platform {

struct CameraHolds::Holds {
  struct Hold {
    std::weak_ptr<CameraLock> lock;    // while it is held: a session that is being closed may still hold it
    std::shared_ptr<CameraLock> kept;  // also between sessions
    bool inSession = false;
  };

  Mutex mutex;
  bool keep ZEL_GUARDED_BY(mutex) = false;
  std::map<std::string, Hold, std::less<>> cameras ZEL_GUARDED_BY(mutex);
};

class CameraHolds::Use final : public CameraUse {
 public:
  Use(std::shared_ptr<Holds> holds, std::string camera, std::shared_ptr<CameraLock> lock)
      : holds_(std::move(holds)), camera_(std::move(camera)), lock_(std::move(lock)) {}
  ~Use() override { letGo(); }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;

  void letGo() override {
    if (gone_.exchange(true)) return;
    std::shared_ptr<CameraLock> kept;  // destroyed without the lock
    const MutexLock lock(holds_->mutex);
    Holds::Hold& hold = holds_->cameras[camera_];
    hold.inSession = false;
    if (!holds_->keep) kept = std::move(hold.kept);
  }

 private:
  const std::shared_ptr<Holds> holds_;
  const std::string camera_;
  const std::shared_ptr<CameraLock> lock_;
  std::atomic<bool> gone_ = false;
};

CameraHolds::CameraHolds(std::string busFolder, std::string program, bool forGood)
    : busFolder_(std::move(busFolder)),
      program_(std::move(program)),
      forGood_(forGood),
      holds_(std::make_shared<Holds>()) {
  keepBetweenSessions(forGood_);
}

CameraHolds::~CameraHolds() {
  const MutexLock lock(holds_->mutex);
  holds_->keep = false;
  for (auto& [camera, hold] : holds_->cameras) hold.kept.reset();
}

CameraHolds::Taken CameraHolds::take(const std::string& camera, CameraLock::Patience patience) {
  const MutexLock lock(holds_->mutex);
  Holds::Hold& hold = holds_->cameras[camera];
  if (hold.inSession) return {nullptr, CameraUser{::getpid(), program_}, {}};
  const bool isNew = !hold.kept;
  std::shared_ptr<CameraLock> held = hold.lock.lock();
  if (!held) {
    CameraLock::Taken taken = CameraLock::take(busFolder_, camera, program_, patience);
    if (!taken.lock) return {nullptr, std::move(taken.user), std::move(taken.fault)};
    held = std::move(taken.lock);
  }
  hold = {held, held, true};
  return {std::make_shared<Use>(holds_, camera, std::move(held)), std::nullopt, {}, isNew};
}

void CameraHolds::keepBetweenSessions(bool keep) {
  {
    const MutexLock lock(holds_->mutex);
    holds_->keep = keep || forGood_;
  }
  if (!keep) giveBack();
}

void CameraHolds::giveBack() {
  if (forGood_) return;
  std::vector<std::shared_ptr<CameraLock>> given;  // destroyed without the lock
  const MutexLock lock(holds_->mutex);
  for (auto& [camera, hold] : holds_->cameras) {
    if (!hold.inSession) given.push_back(std::move(hold.kept));
  }
}

void CameraHolds::giveBack(const std::string& camera) {
  if (forGood_) return;
  std::shared_ptr<CameraLock> given;
  const MutexLock lock(holds_->mutex);
  const auto hold = holds_->cameras.find(camera);
  if (hold != holds_->cameras.end() && !hold->second.inSession) given = std::move(hold->second.kept);
}

CameraHolds::State CameraHolds::of(const std::string& camera) {
  const MutexLock lock(holds_->mutex);
  const auto hold = holds_->cameras.find(camera);
  if (hold == holds_->cameras.end()) return State::free;
  if (hold->second.inSession) return State::inSession;
  return hold->second.kept ? State::kept : State::free;
}

}  // namespace zel::platform
