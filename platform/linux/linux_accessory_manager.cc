#include "platform/linux/linux_accessory_manager.h"

#include <chrono>
#include <utility>

#include "platform/linux/accessory_folder.h"
#include "platform/linux/descriptor_session.h"
#include "platform/linux/endpoint.h"

namespace zel::platform {
namespace {

// The host usually connects on its main thread, which an unresponsive endpoint must not block for long.
constexpr std::chrono::seconds kConnectLimit{2};
constexpr double kReturnPeriod = 1;  // seconds between two attempts to reach a camera that is away

}  // namespace

LinuxAccessoryManager::LinuxAccessoryManager(Settings settings, std::shared_ptr<LinuxRunLoop> mainRunLoop,
                                             Queue& worker, NotificationCenter& notifications)
    : settings_(std::move(settings)),
      mainRunLoop_(std::move(mainRunLoop)),
      worker_(worker),
      notifications_(notifications),
      holds_(settings_.folder, settings_.program, settings_.keepCameras),
      attached_(settings_.folder) {}

LinuxAccessoryManager::~LinuxAccessoryManager() {
  const MutexLock lock(mutex_);
  if (watch_) watch_->stop();
}

std::vector<std::shared_ptr<Accessory>> LinuxAccessoryManager::connectedAccessories() {
  std::vector<std::shared_ptr<Accessory>> accessories;
  {
    const MutexLock lock(mutex_);
    if (!watch_ || behind_) lookSilently();
    const Shown all = attached_.shown();
    accessories.assign(all.begin(), all.end());
  }
  giveWarnings();
  return accessories;
}

void LinuxAccessoryManager::registerForLocalNotifications() {
  {
    const MutexLock lock(mutex_);
    if (registrations_++ == 0) startWatch();
  }
  holds_.keepBetweenSessions(true);
  giveWarnings();
}

// Starts the watch before reading the folder: a change in between is then seen twice instead of missed, and announced
// once.
void LinuxAccessoryManager::startWatch() {
  std::string fault;
  if (!prepareAccessoryFolder(settings_.folder, fault)) return warnings_.push_back(fault);
  watch_ = FolderWatch::start(
      *mainRunLoop_, settings_.folder,
      [this](const FolderWatch& watch, const FolderChange& change) { folderChanged(watch, change); }, fault);
  // A folder that is looked at every second instead is no fault: plugging is noticed.
  if (!watch_) return warnings_.push_back("accessory folder " + settings_.folder + " cannot be watched: " + fault);
  if (!told_) return lookSilently();
  behind_ = true;
  mainRunLoop_->perform([this, watch = watch_] { announceSince(*watch); });
}

void LinuxAccessoryManager::unregisterForLocalNotifications() {
  std::shared_ptr<FolderWatch> watch;
  std::unique_ptr<Timer> timer;  // both are destroyed without the lock
  bool isLast = false;
  {
    const MutexLock lock(mutex_);
    if (registrations_ == 0) return;
    isLast = --registrations_ == 0;
    if (isLast) {
      watch = std::move(watch_);
      timer = std::move(returnTimer_);
      behind_ = false;
      for (const auto& one : attached_.away()) attached_.bringBack(one);  // no host waits for it any more
    }
  }
  if (watch) watch->stop();
  // One of several stacks of this process has closed its camera and its session.
  isLast ? holds_.keepBetweenSessions(false) : holds_.giveBack();
}

void LinuxAccessoryManager::folderChanged(const FolderWatch& watch, const FolderChange& change) {
  if (change.kind == FolderChange::Kind::file) {
    if (isAccessoryName(change.name)) announce(watch, {change.name});
    return;
  }
  std::vector<std::string> names;
  {
    const MutexLock lock(mutex_);
    names = attached_.namesToLookAt();
  }
  announce(watch, names);
  if (change.kind == FolderChange::Kind::gone) watchEnded(watch);
}

void LinuxAccessoryManager::announceSince(const FolderWatch& watch) {
  std::vector<std::string> names;
  {
    const MutexLock lock(mutex_);
    if (watch_.get() != &watch || !std::exchange(behind_, false)) return;
    names = attached_.namesToLookAt();
  }
  announce(watch, names);
}

void LinuxAccessoryManager::announce(const FolderWatch& watch, const std::vector<std::string>& names) {
  Shown changed;
  {
    const MutexLock lock(mutex_);
    if (watch_.get() != &watch) return;
    changed = attached_.takeDepartures(names);
  }
  announce(watch, kAccessoryDidDisconnectNotification, changed);
  {
    const MutexLock lock(mutex_);
    if (watch_.get() != &watch) return;  // an observer has just unregistered
    changed = attached_.takeArrivals(names, warnings_);
  }
  giveWarnings();
  announce(watch, kAccessoryDidConnectNotification, changed);
}

void LinuxAccessoryManager::announce(const FolderWatch& watch, std::string_view notification,
                                     const Shown& accessories) {
  for (const auto& accessory : accessories) {
    if (!watchedBy(watch)) return;
    notifications_.post({.name = std::string(notification),
                         .userInfo = {{std::string(kAccessoryKey), std::shared_ptr<Accessory>(accessory)}}});
  }
}

bool LinuxAccessoryManager::watchedBy(const FolderWatch& watch) {
  const MutexLock lock(mutex_);
  return watch_.get() == &watch;
}

void LinuxAccessoryManager::watchEnded(const FolderWatch& watch) {
  {
    const MutexLock lock(mutex_);
    if (watch_.get() != &watch) return;
    watch_ = nullptr;
    warnings_.push_back("accessory folder " + settings_.folder +
                        " is gone; plugging is noticed again once the host has registered anew");
  }
  giveWarnings();
}

void LinuxAccessoryManager::lookSilently() {
  const std::vector<std::string> names = attached_.namesToLookAt();
  attached_.takeDepartures(names);
  attached_.takeArrivals(names, warnings_);
  told_ = true;
  behind_ = false;
}

void LinuxAccessoryManager::giveWarnings() {
  std::vector<std::string> warnings;
  {
    const MutexLock lock(mutex_);
    warnings.swap(warnings_);
  }
  for (const std::string& warning : warnings) settings_.warn(warning);
}

std::unique_ptr<AccessorySession> LinuxAccessoryManager::openSession(const std::shared_ptr<Accessory>& accessory,
                                                                     std::string_view protocol) {
  const auto attached = std::dynamic_pointer_cast<LinuxAccessory>(accessory);
  if (!attached || !attached->isConnected() || !attached->offers(protocol)) return nullptr;
  GatewayWay way;
  CameraHolds::Taken camera = takeCamera(*attached, way);
  if (way.answer == GatewayWay::Answer::granted) return sessionThroughGateway(std::move(way.connection), attached);
  if (way.answer == GatewayWay::Answer::absent)
    cannotConnect(attached, "the gateway that has the camera cannot reach it");
  if (!camera.use) return nullptr;
  attached->setThroughGateway(false);
  std::string fault;
  UniqueDescriptor connection = attached->takeConnection();
  if (!connection) connection = connectEndpoint(attached->endpoint(), kConnectLimit, fault);
  if (connection) {
    if (auto session = sessionOver(std::move(connection), attached, camera.use)) return session;
    fault = "no descriptor is left";
  }
  camera.use.reset();
  if (camera.isNew) holds_.giveBack(attached->camera());
  cannotConnect(attached, fault);
  return nullptr;
}

// The lock first: where nobody has it, no gateway shares the camera.
CameraHolds::Taken LinuxAccessoryManager::takeCamera(LinuxAccessory& accessory, GatewayWay& way) {
  const std::string camera = accessory.camera();
  if (settings_.direct) return tell(holds_.take(camera), accessory);
  CameraHolds::Taken taken = holds_.take(camera, CameraLock::Patience::none);
  if (!taken.user) return tell(std::move(taken), accessory);
  if (accessory.isThroughGateway()) way.connection = accessory.takeConnection();
  if (way.connection) {
    way.answer = GatewayWay::Answer::granted;
  } else {
    way = askGateways(settings_.folder, camera, kConnectLimit);
  }
  return way.answer == GatewayWay::Answer::none ? tell(holds_.take(camera), accessory) : CameraHolds::Taken();
}

CameraHolds::Taken LinuxAccessoryManager::tell(CameraHolds::Taken taken, LinuxAccessory& accessory) const {
  if (taken.user) settings_.inUse({accessory.camera(), taken.user->process, taken.user->program});
  if (!taken.fault.empty() && accessory.reportsFirstFault()) {
    settings_.warn("camera " + accessory.camera() + " cannot be locked: " + taken.fault);
  }
  return taken;
}

// It needs no lock: the gateway has it, and gives each host a connection of its own.
std::unique_ptr<AccessorySession> LinuxAccessoryManager::sessionThroughGateway(UniqueDescriptor connection,
                                                                               const Attached& accessory) {
  accessory->setThroughGateway(true);
  const std::uint64_t number = accessory->beginSession();
  auto session = makeDescriptorSession(connection.release(), {.ended = endOf(accessory, number)});
  if (!session) cannotConnect(accessory, "no descriptor is left");
  return session;
}

std::unique_ptr<AccessorySession> LinuxAccessoryManager::sessionOver(UniqueDescriptor connection,
                                                                     const Attached& accessory,
                                                                     const std::shared_ptr<CameraUse>& use) {
  const std::uint64_t number = accessory->beginSession();
  return makeDescriptorSession(connection.release(),
                               {.ended = endOf(accessory, number), .wasLetGo = [use] { use->letGo(); }});
}

// An accessory that worked before is detached; others are skipped.
void LinuxAccessoryManager::cannotConnect(const Attached& accessory, const std::string& fault) {
  if (accessory->lastSession() != 0) return endOf(accessory, accessory->lastSession())();
  if (!accessory->reportsFirstFault()) return;
  settings_.warn("accessory file " + accessory->path() + " cannot connect: " + fault);
}

std::function<void()> LinuxAccessoryManager::endOf(const Attached& accessory, std::uint64_t session) {
  return onMainRunLoop([this, accessory, session] { streamEnded(accessory, session); });
}

// The returned function may outlive the manager, and must not keep the run loop alive.
std::function<void()> LinuxAccessoryManager::onMainRunLoop(std::function<void()> step) {
  return [loop = std::weak_ptr(mainRunLoop_), alive = std::weak_ptr(alive_), step = std::move(step)] {
    const auto there = loop.lock();
    if (!there) return;
    there->perform([alive, step] {
      if (alive.lock()) step();
    });
  };
}

void LinuxAccessoryManager::streamEnded(const Attached& accessory, std::uint64_t session) {
  std::shared_ptr<FolderWatch> watch;
  {
    const MutexLock lock(mutex_);
    watch = watch_;
    if (!watch || accessory->lastSession() != session || !attached_.sendAway(accessory)) return;
  }
  announce(*watch, kAccessoryDidDisconnectNotification, {accessory});
  auto timer = mainRunLoop_->scheduleRepeating(kReturnPeriod, [this] { lookForReturns(); });
  const MutexLock lock(mutex_);
  std::swap(returnTimer_, timer);
}

void LinuxAccessoryManager::lookForReturns() {
  std::unique_ptr<Timer> doomed;  // destroyed without the lock
  Shown away;
  {
    const MutexLock lock(mutex_);
    away = attached_.away();
    if (away.empty()) doomed = std::move(returnTimer_);
  }
  for (const auto& one : away) {
    if (one->isThroughGateway()) {
      if (one->beginsTrying()) tryGateways(one);
      continue;
    }
    const CameraHolds::State state = holds_.of(one->camera());
    if (state == CameraHolds::State::kept && one->beginsTrying()) tryToConnect(one);
    if (state == CameraHolds::State::free) returned(one, {});
  }
}

void LinuxAccessoryManager::tryToConnect(const Attached& away) {
  const auto connection = std::make_shared<UniqueDescriptor>();
  const auto tried = onMainRunLoop([this, away, connection] {
    away->endTrying();
    if (*connection) returned(away, std::move(*connection));
  });
  worker_.post([away, connection, tried] {
    std::string fault;
    *connection = connectEndpoint(away->endpoint(), kConnectLimit, fault);
    tried();
  });
}

// Without a gateway that has the camera it is attached as its file tells: the host connects to it directly.
void LinuxAccessoryManager::tryGateways(const Attached& away) {
  const auto way = std::make_shared<GatewayWay>();
  const auto tried = onMainRunLoop([this, away, way] {
    away->endTrying();
    if (way->answer != GatewayWay::Answer::absent) returned(away, std::move(way->connection));
  });
  worker_.post([away, way, tried, folder = settings_.folder] {
    *way = askGateways(folder, away->camera(), kConnectLimit);
    tried();
  });
}

void LinuxAccessoryManager::returned(const Attached& away, UniqueDescriptor connection) {
  std::shared_ptr<FolderWatch> watch;
  Attached accessory;
  {
    const MutexLock lock(mutex_);
    watch = watch_;
    if (watch) accessory = attached_.bringBack(away);
  }
  if (!accessory) return;
  accessory->setThroughGateway(away->isThroughGateway() && connection);
  accessory->setConnection(std::move(connection));
  announce(*watch, kAccessoryDidConnectNotification, {accessory});
  accessory->takeConnection();  // for a stack that has just closed its camera
}

}  // namespace zel::platform
