#pragma once

#include <ZELTarkaSDK/Result.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "base/mutex.h"

namespace zel {

// Those who wait for a camera's first frame.
//
// Thread: any thread; nothing is called with a lock held.
class Openings {
 public:
  using Id = std::uint64_t;
  // why: nothing where the camera is open.
  using Done = std::function<void(const std::optional<CameraError>& why)>;

  Id add(Done done);
  // watch: ends with the wait, at once where that has ended.
  void keep(Id id, std::shared_ptr<void> watch);

  // Calls done, once. Nothing for a wait that has ended.
  void end(Id id, const std::optional<CameraError>& why);
  void endAll(const std::optional<CameraError>& why);

  bool areNone() const;

 private:
  struct Opening {
    Done done;
    std::shared_ptr<void> watch;
  };

  mutable Mutex mutex_;
  std::map<Id, Opening> openings_ ZEL_GUARDED_BY(mutex_);
  Id next_ ZEL_GUARDED_BY(mutex_) = 1;
};

}  // namespace zel
