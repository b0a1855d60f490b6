#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/accessory.h"
#include "platform/linux/accessory_file.h"
#include "platform/linux/folder_watch.h"
#include "platform/linux/linux_accessory.h"
#include "platform/linux/linux_run_loop.h"
#include "platform/mutex.h"
#include "platform/notification_center.h"

namespace zel::platform {

// The accessory bus: each NAME.json in a folder is an attached accessory.
//
// What it knows changes in two ways. While it is registered, the folder is watched on the main run loop; each change is
// taken in and announced in one step, so a listing holds exactly what was there at the registration or has been
// announced since. Otherwise a listing looks at the folder itself, in silence. A registration after a listing announces
// what has changed in between, unless the host lists again first.
//
// Two files with one connectionID are two accessories, in the order of their names.
// Thread: any thread. `warn` is called on any thread, without a lock held.
class LinuxAccessoryManager final : public AccessoryManager {
 public:
  struct Settings {
    std::string folder;
    std::function<void(const std::string&)> warn;
  };

  // The run loop's tasks must have been discarded when the manager goes.
  LinuxAccessoryManager(Settings settings, std::shared_ptr<LinuxRunLoop> mainRunLoop,
                        NotificationCenter& notifications);
  ~LinuxAccessoryManager() override;

  std::vector<std::shared_ptr<Accessory>> connectedAccessories() override;
  void registerForLocalNotifications() override;
  void unregisterForLocalNotifications() override;
  std::unique_ptr<AccessorySession> openSession(const std::shared_ptr<Accessory>& accessory,
                                                std::string_view protocol) override;

 private:
  struct Known {
    AccessoryFile file;
    std::shared_ptr<LinuxAccessory> accessory;  // null when the file was skipped
  };
  using Shown = std::vector<std::shared_ptr<LinuxAccessory>>;

  void folderChanged(const FolderWatch& watch, const FolderChange& change);
  void announceSince(const FolderWatch& watch);
  void announce(const FolderWatch& watch, const std::vector<std::string>& names);
  void announce(const FolderWatch& watch, std::string_view notification, const Shown& accessories);
  void watchEnded(const FolderWatch& watch);

  void startWatch() ZEL_REQUIRES(mutex_);
  void lookSilently() ZEL_REQUIRES(mutex_);
  std::vector<std::string> namesToLookAt() ZEL_REQUIRES(mutex_);
  Shown takeDepartures(const std::vector<std::string>& names) ZEL_REQUIRES(mutex_);
  Shown takeArrivals(const std::vector<std::string>& names) ZEL_REQUIRES(mutex_);
  std::shared_ptr<LinuxAccessory> admit(const std::string& path, const AccessoryFile& file) ZEL_REQUIRES(mutex_);
  Shown shown() ZEL_REQUIRES(mutex_);
  bool watchedBy(const FolderWatch& watch);
  void giveWarnings();

  const Settings settings_;
  const std::shared_ptr<LinuxRunLoop> mainRunLoop_;
  NotificationCenter& notifications_;

  Mutex mutex_;
  std::map<std::string, Known, std::less<>> known_ ZEL_GUARDED_BY(mutex_);  // by file name
  int registrations_ ZEL_GUARDED_BY(mutex_) = 0;
  std::shared_ptr<FolderWatch> watch_ ZEL_GUARDED_BY(mutex_);
  bool told_ ZEL_GUARDED_BY(mutex_) = false;    // the host has been told what is known
  bool behind_ ZEL_GUARDED_BY(mutex_) = false;  // the watch began after the host was told
  std::vector<std::string> warnings_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel::platform
