#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <utility>

#include <ZELTarkaSDK/platform/ports.h>
#include "base/mutex.h"
#include "base/observer_list.h"
#include "link/camera_data_parser.h"
#include "link/camera_session.h"
#include "link/keep_alive.h"
#include "link/link_clock.h"
#include "link/zel_tunnel_service.h"

using zel::MutexLock;
using zel::platform::Accessory;
using zel::platform::Notification;
using zel::platform::NotificationObservation;

namespace {

constexpr double kDetectPeriod = 1.0;       // seconds
constexpr double kFirstFrameTimeout = 5.0;  // a new session gets more time than a running one
constexpr double kSilenceTimeout = 3.0;
constexpr double kNeverReceived = -1.0;
constexpr std::int64_t kSlowRoundTrip = 12;  // milliseconds, from which a clock exchange is repeated

enum Status : std::uint64_t { kClosed = 0, kOpen = 1, kFlowing = 2, kSilent = 3 };

using Handler = void (ZELCameraAccessory::*)(const Notification&);

// "E1_2.0.1_192" gives 192. strtoll, as it skips white space, takes a sign and stops at the first other character.
std::int64_t firmwareNumber(const std::string& revision) {
  const std::size_t underscore = revision.rfind('_');
  const std::size_t start = underscore == std::string::npos ? 0 : underscore + 1;
  return std::strtoll(revision.c_str() + start, nullptr, 10);
}

}  // namespace

struct ZELCameraAccessory::Impl final : zel::AccessoryLink {
  Impl(ZELCameraAccessory& owner, const zel::platform::Ports& hostPorts, CameraDataParser& cameraParser,
       std::string serial)
      : accessory(owner),
        ports(hostPorts),
        clock(ports.clock),
        parser(cameraParser),
        serialNumber(std::move(serial)),
        session(ports, *this, cameraParser) {}

  void successCreateSession() override { accessory.successCreateSession(); }
  void receivedData() override { accessory.receivedData(); }
  std::int64_t firewareVersion() const override { return accessory.firewareVersion(); }
  std::int64_t timeOffset() const override { return accessory.timeOffset(); }
  double absoluteTime() const override { return clock.absoluteTime(); }
  void sendSyncTimeCmd() override { accessory.sendSyncTimeCmd(); }
  void updateReceiveSyncTimeCmdTimestamp(std::int64_t receiveTime) override {
    accessory.updateReceiveSyncTimeCmdTimestamp(receiveTime);
  }
  void streamPositionLost() override { session.reopenAfterLostPosition(); }

  ZELCameraAccessory& accessory;
  const zel::platform::Ports ports;
  zel::LinkClock clock;
  CameraDataParser& parser;
  const std::string serialNumber;  // empty: any camera
  zel::KeepAlive keepAlive;        // set before the object is used

  // Read on any thread without a lock; written under linkMutex where two threads write.
  std::atomic<std::uint64_t> status = kClosed;
  std::atomic<double> lastReceivedDataTimer = kNeverReceived;
  std::atomic<std::int64_t> firewareNumber = 0;
  std::atomic<std::int64_t> timeOffset_ = 0;
  std::atomic<std::int64_t> syncRoundTrip = -1;
  zel::ObserverList<std::uint64_t> statusObservers;

  // Orders reports of the session thread against the closing of the session: a last frame must not change a closed
  // connection's status.
  zel::Mutex linkMutex;

  mutable zel::Mutex infoMutex;
  std::shared_ptr<const ZELAccessoryInfo> accessoryInfo ZEL_GUARDED_BY(infoMutex);
  std::weak_ptr<ZELCameraAccessoryDelegate> delegate ZEL_GUARDED_BY(infoMutex);

  zel::Mutex watchMutex;
  std::unique_ptr<zel::platform::Timer> detectTimer ZEL_GUARDED_BY(watchMutex);
  std::unique_ptr<zel::platform::NotificationObservation> connectObservation ZEL_GUARDED_BY(watchMutex);
  std::unique_ptr<zel::platform::NotificationObservation> disconnectObservation ZEL_GUARDED_BY(watchMutex);
  std::atomic<std::uint64_t> watches = 0;  // changes with each opening and closing of the camera

  CameraSession session;  // last except the service: its thread uses all members above
  ZELTunnelService tunnelService{session};
};

ZELCameraAccessory::ZELCameraAccessory(const zel::platform::Ports& ports, CameraDataParser& parser,
                                       std::string serialNumber)
    : impl_(std::make_unique<Impl>(*this, ports, parser, std::move(serialNumber))) {
  parser.setAccessory(impl_.get());
}

ZELCameraAccessory::~ZELCameraAccessory() {
  impl_->keepAlive = {};  // the stack is being destroyed
  closeCamera();
  impl_->session.waitForThreadEnd();
  impl_->parser.setAccessory(nullptr);
}

void ZELCameraAccessory::setKeepAlive(const zel::KeepAlive& keepAlive) {
  impl_->keepAlive = keepAlive;
  impl_->session.setKeepAlive(keepAlive);
}

std::uint64_t ZELCameraAccessory::status() const { return impl_->status.load(); }

zel::Observation ZELCameraAccessory::observeStatus(StatusObserver observer) {
  return impl_->statusObservers.add(std::move(observer));
}

std::int64_t ZELCameraAccessory::firewareVersion() const { return impl_->firewareNumber.load(); }
std::int64_t ZELCameraAccessory::timeOffset() const { return impl_->timeOffset_.load(); }
std::int64_t ZELCameraAccessory::syncRoundTrip() const { return impl_->syncRoundTrip.load(); }
double ZELCameraAccessory::lastReceivedDataTimer() const { return impl_->lastReceivedDataTimer.load(); }
CameraSession& ZELCameraAccessory::cameraSession() { return impl_->session; }
ZELTunnelService& ZELCameraAccessory::tunnelService() { return impl_->tunnelService; }
void ZELCameraAccessory::simulatorConnectToHost(std::string_view, int) {}

std::shared_ptr<const ZELAccessoryInfo> ZELCameraAccessory::accessoryInfo() const {
  const MutexLock lock(impl_->infoMutex);
  return impl_->accessoryInfo;
}

void ZELCameraAccessory::setAccessoryInfo(std::shared_ptr<const ZELAccessoryInfo> info) {
  const MutexLock lock(impl_->infoMutex);
  impl_->firewareNumber.store(info ? firmwareNumber(info->firmwareRevision()) : 0);
  impl_->accessoryInfo = std::move(info);
}

void ZELCameraAccessory::setDelegate(std::weak_ptr<ZELCameraAccessoryDelegate> delegate) {
  const MutexLock lock(impl_->infoMutex);
  impl_->delegate = std::move(delegate);
}

std::shared_ptr<ZELCameraAccessoryDelegate> ZELCameraAccessory::delegate() const {
  const MutexLock lock(impl_->infoMutex);
  return impl_->delegate.lock();
}

std::shared_ptr<const ZELAccessoryInfo> ZELCameraAccessory::openCamera() {
  const auto held = impl_->keepAlive.hold();
  auto connect =
      observe(zel::platform::kAccessoryDidConnectNotification, &ZELCameraAccessory::accessoryDidConnectNotification);
  auto disconnect = observe(zel::platform::kAccessoryDidDisconnectNotification,
                            &ZELCameraAccessory::accessoryDidDisconnectNotification);
  const std::uint64_t watch = ++impl_->watches;
  {
    const MutexLock lock(impl_->watchMutex);
    std::swap(impl_->connectObservation, connect);
    std::swap(impl_->disconnectObservation, disconnect);
  }
  const bool watching = connect != nullptr;
  connect.reset();
  disconnect.reset();
  if (!watching) impl_->ports.accessories.registerForLocalNotifications();
  for (const auto& accessory : impl_->ports.accessories.connectedAccessories()) {
    const bool connected = connectCamera(accessory);
    if (impl_->watches.load() != watch) return nullptr;  // an observer of the session closed the camera
    if (!connected) continue;
    openConnection();
    return ZELAccessoryInfo::initWithAccessory(*accessory);
  }
  return nullptr;
}

std::unique_ptr<NotificationObservation> ZELCameraAccessory::observe(std::string_view name, Handler handle) {
  return impl_->ports.notifications.observe(
      name, impl_->keepAlive.during([this, handle](const Notification& n) { (this->*handle)(n); }));
}

void ZELCameraAccessory::closeCamera() {
  const auto held = impl_->keepAlive.hold();
  ++impl_->watches;
  closeConnection();
  std::unique_ptr<zel::platform::NotificationObservation> connect;
  std::unique_ptr<zel::platform::NotificationObservation> disconnect;
  {
    const MutexLock lock(impl_->watchMutex);
    std::swap(impl_->connectObservation, connect);
    std::swap(impl_->disconnectObservation, disconnect);
  }
  if (connect) impl_->ports.accessories.unregisterForLocalNotifications();
}

bool ZELCameraAccessory::connectCamera(const std::shared_ptr<Accessory>& accessory) {
  const auto held = impl_->keepAlive.hold();
  if (!accessory || !isWanted(*accessory)) return false;
  bool opened = false;
  // No early exit: an accessory that lists the protocol twice has its session opened twice, the second replacing the
  // first.
  for (const std::string& protocol : accessory->description().protocolStrings) {
    if (protocol != zel::kAccessoryProtocol) continue;
    const auto store = [&] { setAccessoryInfo(ZELAccessoryInfo::initWithAccessory(*accessory)); };
    opened |= impl_->session.openSessionWithAccessory(accessory, zel::kAccessoryProtocol, store);
  }
  return opened;
}

bool ZELCameraAccessory::isWanted(const Accessory& accessory) const {
  return impl_->serialNumber.empty() || accessory.description().serialNumber == impl_->serialNumber;
}

void ZELCameraAccessory::accessoryDidConnectNotification(const Notification& notification) {
  const auto held = impl_->keepAlive.hold();
  const auto accessory = notification.accessory(zel::platform::kAccessoryKey);
  if (!connectCamera(accessory)) return;
  openConnection();
  impl_->ports.notifications.post(
      {std::string(kZELCameraDidConnectNotification), {{std::string(kZELCameraConnectAccessoryKey), accessory}}});
}

void ZELCameraAccessory::accessoryDidDisconnectNotification(const Notification& notification) {
  const auto held = impl_->keepAlive.hold();
  const auto accessory = notification.accessory(zel::platform::kAccessoryKey);
  const auto connected = accessoryInfo();
  if (!connected || !accessory) return;
  if (accessory->description().connectionID != connected->connectionID()) return;
  impl_->ports.notifications.post(
      {std::string(kZELCameraDidDisConnectNotification), {{std::string(kZELCameraConnectAccessoryKey), accessory}}});
  closeConnection();
}

void ZELCameraAccessory::openConnection() {
  // The tunnel always fails; only the report has an effect.
  if (!impl_->tunnelService.open() && delegate()) {
    impl_->ports.queues.mainQueue().post([weak = std::weak_ptr(delegate())] {
      const auto listener = weak.lock();
      if (listener) listener->cameraAccessoryOnError({kZELCameraAccessoryErrorDomain, 0, std::nullopt}, std::nullopt);
    });
  }
  startDetectTimer();
}

void ZELCameraAccessory::closeConnection() {
  const auto held = impl_->keepAlive.hold();
  impl_->session.closeSession();
  setAccessoryInfo(nullptr);
  impl_->tunnelService.close();
  stopDetectTimer();
  {
    const MutexLock lock(impl_->linkMutex);
    impl_->timeOffset_.store(0);
    impl_->lastReceivedDataTimer.store(kNeverReceived);
    if (impl_->status.exchange(kClosed) == kClosed) return;
  }
  impl_->statusObservers.notify(kClosed);
}

void ZELCameraAccessory::writeData(const ZELData& data) { impl_->session.writeData(data); }
void ZELCameraAccessory::sendSyncTimeCmd() { impl_->session.sendSyncTimeCmd(); }

void ZELCameraAccessory::successCreateSession() {
  impl_->clock.anchor();
  setStatusWhileOpen(kOpen);
}

void ZELCameraAccessory::receivedData() { setStatusWhileOpen(kFlowing); }

// Data has arrived or a session has opened: restarts the silence timer.
void ZELCameraAccessory::setStatusWhileOpen(std::uint64_t status) {
  {
    const MutexLock lock(impl_->linkMutex);
    if (!impl_->session.isOpen()) return;
    impl_->lastReceivedDataTimer.store(impl_->clock.absoluteTime());
    if (impl_->status.exchange(status) == status) return;
  }
  impl_->statusObservers.notify(status);
}

void ZELCameraAccessory::startDetectTimer() {
  stopDetectTimer();
  auto timer = impl_->ports.threads.currentRunLoop().scheduleRepeating(
      kDetectPeriod, impl_->keepAlive.during([this] { onDetectTimer(); }));
  const MutexLock lock(impl_->watchMutex);
  std::swap(impl_->detectTimer, timer);
}

void ZELCameraAccessory::stopDetectTimer() {
  std::unique_ptr<zel::platform::Timer> timer;
  const MutexLock lock(impl_->watchMutex);
  std::swap(impl_->detectTimer, timer);
}

void ZELCameraAccessory::onDetectTimer() {
  const auto held = impl_->keepAlive.hold();
  const std::uint64_t seen = impl_->status.load();
  const double last = impl_->lastReceivedDataTimer.load();
  if (last < 0) return;  // closed while this tick was in progress
  const double silence = impl_->clock.absoluteTime() - last;
  if (seen == kOpen) {
    if (impl_->parser.isNeedDataSynchronism()) impl_->parser.sendSyncData();
    if (silence > kFirstFrameTimeout) replaceStatus(seen, kSilent);
  } else {
    replaceStatus(seen, silence > kSilenceTimeout ? kSilent : kFlowing);
  }
}

// Only if the status was not changed meanwhile: a session that is reopened during a tick must stay at 1, since the
// marker is requested only at 1.
void ZELCameraAccessory::replaceStatus(std::uint64_t from, std::uint64_t to) {
  {
    const MutexLock lock(impl_->linkMutex);
    if (from == to || !impl_->status.compare_exchange_strong(from, to)) return;
  }
  impl_->statusObservers.notify(to);
}

void ZELCameraAccessory::updateReceiveSyncTimeCmdTimestamp(std::int64_t receiveTime) {
  const std::int64_t sent = impl_->session.syncTimestamp();
  const std::int64_t roundTrip = receiveTime - sent;
  impl_->syncRoundTrip.store(roundTrip);
  if (roundTrip >= kSlowRoundTrip && impl_->session.takeSyncTimeResend()) impl_->session.sendSyncTimeCmd();
  const MutexLock lock(impl_->linkMutex);
  if (impl_->session.isOpen()) impl_->timeOffset_.store(sent + roundTrip / 2);
}
