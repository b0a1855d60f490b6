#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <ZELTarkaSDK/CameraInUse.h>
#include <ZELTarkaSDK/platform/accessory.h>
#include <ZELTarkaSDK/platform/notification_center.h>
#include <ZELTarkaSDK/platform/queues.h>

#include "base/mutex.h"
#include "platform/linux/attached_accessories.h"
#include "platform/linux/camera_holds.h"
#include "platform/linux/folder_watch.h"
#include "platform/linux/gateway_way.h"
#include "platform/linux/linux_accessory.h"
#include "platform/linux/linux_run_loop.h"

namespace zel::platform {

// The accessory bus: each NAME.json in a folder is an attached accessory.
//
// Its state changes in two ways. While it is registered, the folder is watched on the main run loop; each change is
// processed and announced in one step, so a listing contains exactly what was attached at the registration or has been
// announced since. Otherwise a listing reads the folder and announces nothing. A registration after a listing announces
// the changes in between, unless the host lists again first.
//
// Two files with one connectionID are two accessories, in the order of their names.
//
// A camera has one reader: a session is opened under the camera's lock, which is kept between sessions while the host
// is registered. Where somebody else has the lock, and a gateway of the bus shares the camera, the session runs through
// the gateway. When a session's stream ends, or the host cannot open it again, the accessory is detached, as if its
// file were removed. While the lock is kept, the manager tries once a second to make the connection of the next
// session, and announces the accessory when it succeeds. Without the lock no host waits for the camera, and the
// accessory is attached while its file exists.
//
// Thread: any thread. `warn` and `inUse` are called on any thread, without a lock held.
class LinuxAccessoryManager final : public AccessoryManager {
 public:
  struct Settings {
    std::string folder;
    std::function<void(const std::string&)> warn;
    std::function<void(const CameraInUse&)> inUse;
    std::string program;
    bool keepCameras = false;
    bool direct = false;  // never through a gateway
  };

  // worker: makes connections, which may take time.
  // Destroy it after the run loop's tasks have been discarded.
  LinuxAccessoryManager(Settings settings, std::shared_ptr<LinuxRunLoop> mainRunLoop, Queue& worker,
                        NotificationCenter& notifications);
  ~LinuxAccessoryManager() override;

  std::vector<std::shared_ptr<Accessory>> connectedAccessories() override;
  void registerForLocalNotifications() override;
  void unregisterForLocalNotifications() override;
  std::unique_ptr<AccessorySession> openSession(const std::shared_ptr<Accessory>& accessory,
                                                std::string_view protocol) override;

 private:
  using Attached = std::shared_ptr<LinuxAccessory>;
  using Shown = AttachedAccessories::List;

  void folderChanged(const FolderWatch& watch, const FolderChange& change);
  void announceSince(const FolderWatch& watch);
  void announce(const FolderWatch& watch, const std::vector<std::string>& names);
  void announce(const FolderWatch& watch, std::string_view notification, const Shown& accessories);
  void watchEnded(const FolderWatch& watch);

  CameraHolds::Taken takeCamera(LinuxAccessory& accessory, GatewayWay& way);
  CameraHolds::Taken tell(CameraHolds::Taken taken, LinuxAccessory& accessory) const;
  std::unique_ptr<AccessorySession> sessionThroughGateway(UniqueDescriptor connection, const Attached& accessory);
  std::unique_ptr<AccessorySession> sessionOver(UniqueDescriptor connection, const Attached& accessory,
                                                const std::shared_ptr<CameraUse>& use);
  void cannotConnect(const Attached& accessory, const std::string& fault);
  std::function<void()> endOf(const Attached& accessory, std::uint64_t session);
  void streamEnded(const Attached& accessory, std::uint64_t session);
  void lookForReturns();
  void tryToConnect(const Attached& away);
  void tryGateways(const Attached& away);
  void returned(const Attached& away, UniqueDescriptor connection);
  std::function<void()> onMainRunLoop(std::function<void()> step);

  void startWatch() ZEL_REQUIRES(mutex_);
  void lookSilently() ZEL_REQUIRES(mutex_);
  bool watchedBy(const FolderWatch& watch);
  void giveWarnings();

  const Settings settings_;
  const std::shared_ptr<LinuxRunLoop> mainRunLoop_;
  Queue& worker_;
  NotificationCenter& notifications_;
  CameraHolds holds_;
  const std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);  // for late steps

  Mutex mutex_;
  AttachedAccessories attached_ ZEL_GUARDED_BY(mutex_);
  int registrations_ ZEL_GUARDED_BY(mutex_) = 0;
  std::shared_ptr<FolderWatch> watch_ ZEL_GUARDED_BY(mutex_);
  std::unique_ptr<Timer> returnTimer_ ZEL_GUARDED_BY(mutex_);  // while an accessory is away
  bool told_ ZEL_GUARDED_BY(mutex_) = false;                   // the host was told the known state
  bool behind_ ZEL_GUARDED_BY(mutex_) = false;                 // the watch began after the host was told
  std::vector<std::string> warnings_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel::platform
