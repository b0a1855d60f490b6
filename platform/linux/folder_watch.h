#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "platform/linux/linux_run_loop.h"

namespace zel::platform {

// An event of a FolderWatch.
struct FolderChange {
  enum class Kind {
    file,  // the file of that name was created, removed or written
    many,  // changes were lost; anything may have changed
    gone,  // the folder itself was removed or moved; the last change
  };
  Kind kind = Kind::file;
  std::string name;
};

// Watches a folder from start() to stop(). Where the system has no notifications to give, which each user has a limited
// number of, it counts as changed once a second.
//
// Thread: start() and stop() on any thread; the observer is called on the run loop and must outlive it.
class FolderWatch : public std::enable_shared_from_this<FolderWatch> {
 public:
  using Observer = std::function<void(const FolderWatch&, const FolderChange&)>;

  // No change after its return is missed.
  //
  // Errors: null where the folder is gone; `fault` says why. It also says why there are no notifications.
  static std::shared_ptr<FolderWatch> start(LinuxRunLoop& loop, const std::string& folder, Observer observer,
                                            std::string& fault);

  // descriptor: of the notifications; -1 where there are none.
  FolderWatch(LinuxRunLoop& loop, int descriptor, Observer observer);

  void stop();

 private:
  void begin();
  void wait();
  void readChanges();
  void tell(const char* records, std::size_t size);

  LinuxRunLoop& loop_;  // its waits keep this object alive; it outlives this object
  asio::posix::stream_descriptor notifications_;
  std::unique_ptr<Timer> instead_;  // run loop
  const Observer observer_;
  std::atomic<bool> stopped_ = false;
};

}  // namespace zel::platform
