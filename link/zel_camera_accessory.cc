#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <utility>

#include <ZELTarkaSDK/platform/ports.h>

#include "base/has_memory_for.h"
#include "base/shared_value.h"
#include "link/camera_data_parser.h"
#include "link/camera_session.h"
#include "link/keep_alive.h"
#include "link/link_state.h"
#include "link/zel_tunnel_service.h"

using zel::platform::Accessory;
using zel::platform::Notification;
using zel::platform::NotificationObservation;

namespace {

constexpr double kDetectPeriod = 1.0;        // seconds
constexpr std::int64_t kSlowRoundTrip = 12;  // milliseconds, from which a clock exchange is repeated

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
        link(ports.clock),
        parser(cameraParser),
        serialNumber(std::move(serial)),
        session(ports, *this, cameraParser) {}

  void successCreateSession() override { accessory.successCreateSession(); }
  void receivedData() override { link.received(); }
  std::int64_t firewareVersion() const override { return firewareNumber.load(); }
  std::int64_t timeOffset() const override { return link.timeOffset(); }
  double absoluteTime() const override { return link.absoluteTime(); }
  void sendSyncTimeCmd() override { accessory.sendSyncTimeCmd(); }
  void updateReceiveSyncTimeCmdTimestamp(std::int64_t receiveTime) override {
    accessory.updateReceiveSyncTimeCmdTimestamp(receiveTime);
  }
  void streamPositionLost() override { session.reopenAfterLostPosition(); }

  ZELCameraAccessory& accessory;
  const zel::platform::Ports ports;
  zel::LinkState link;
  CameraDataParser& parser;
  const std::string serialNumber;  // empty: any camera
  zel::KeepAlive keepAlive;        // set before the object is used

  std::atomic<std::int64_t> firewareNumber = 0;  // that of accessoryInfo, read for every frame
  std::atomic<std::int64_t> syncRoundTrip = -1;

  zel::Guarded<std::shared_ptr<const ZELAccessoryInfo>> accessoryInfo;
  zel::Guarded<std::weak_ptr<ZELCameraAccessoryDelegate>> delegate;

  // What sees accessories come and go; empty while the camera is closed.
  struct Watch {
    std::unique_ptr<NotificationObservation> connect, disconnect;
  };
  zel::Guarded<std::unique_ptr<zel::platform::Timer>> detectTimer;
  zel::Guarded<Watch> watch;
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

std::uint64_t ZELCameraAccessory::status() const { return static_cast<std::uint64_t>(impl_->link.status()); }

zel::Observation ZELCameraAccessory::observeStatus(StatusObserver observer) {
  return impl_->link.observe(std::move(observer));
}

std::int64_t ZELCameraAccessory::firewareVersion() const { return impl_->firewareNumber.load(); }
std::int64_t ZELCameraAccessory::timeOffset() const { return impl_->link.timeOffset(); }
std::int64_t ZELCameraAccessory::syncRoundTrip() const { return impl_->syncRoundTrip.load(); }
double ZELCameraAccessory::lastReceivedDataTimer() const { return impl_->link.lastReceived(); }
CameraSession& ZELCameraAccessory::cameraSession() { return impl_->session; }
ZELTunnelService& ZELCameraAccessory::tunnelService() { return impl_->tunnelService; }
void ZELCameraAccessory::simulatorConnectToHost(std::string_view, int) {}

std::shared_ptr<const ZELAccessoryInfo> ZELCameraAccessory::accessoryInfo() const { return impl_->accessoryInfo.get(); }

void ZELCameraAccessory::setAccessoryInfo(std::shared_ptr<const ZELAccessoryInfo> info) {
  impl_->accessoryInfo.with([&](std::shared_ptr<const ZELAccessoryInfo>& known) {
    impl_->firewareNumber.store(info ? firmwareNumber(info->firmwareRevision()) : 0);
    known.swap(info);
  });
}

void ZELCameraAccessory::setDelegate(std::weak_ptr<ZELCameraAccessoryDelegate> delegate) {
  impl_->delegate.set(std::move(delegate));
}

std::shared_ptr<ZELCameraAccessoryDelegate> ZELCameraAccessory::delegate() const {
  return impl_->delegate.get().lock();
}

// Without memory the camera is closed, as one that could not be opened.
std::shared_ptr<const ZELAccessoryInfo> ZELCameraAccessory::openCamera() {
  const auto held = impl_->keepAlive.hold();
  std::shared_ptr<const ZELAccessoryInfo> info;
  if (!zel::hasMemoryFor([&] { info = watchAndConnect(); })) closeCamera();
  return info;
}

std::shared_ptr<const ZELAccessoryInfo> ZELCameraAccessory::watchAndConnect() {
  Impl::Watch observed{
      observe(zel::platform::kAccessoryDidConnectNotification, &ZELCameraAccessory::accessoryDidConnectNotification),
      observe(zel::platform::kAccessoryDidDisconnectNotification,
              &ZELCameraAccessory::accessoryDidDisconnectNotification)};
  const std::uint64_t watch = ++impl_->watches;
  const bool watching = impl_->watch.set(std::move(observed)).connect != nullptr;
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
  const Impl::Watch former = impl_->watch.set({});
  if (former.connect) impl_->ports.accessories.unregisterForLocalNotifications();
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
  if (!zel::hasMemoryFor([&] { connectAndTell(notification); })) closeConnection();
}

void ZELCameraAccessory::connectAndTell(const Notification& notification) {
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
  zel::ifMemoryAllows([&] {
    impl_->ports.notifications.post(
        {std::string(kZELCameraDidDisConnectNotification), {{std::string(kZELCameraConnectAccessoryKey), accessory}}});
  });
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
  impl_->link.close();
}

void ZELCameraAccessory::writeData(const ZELData& data) { impl_->session.writeData(data); }
void ZELCameraAccessory::sendSyncTimeCmd() { impl_->session.sendSyncTimeCmd(); }

void ZELCameraAccessory::successCreateSession() {
  impl_->link.opened([this] { return impl_->session.isOpen(); });
}

void ZELCameraAccessory::receivedData() { impl_->link.received(); }

void ZELCameraAccessory::startDetectTimer() {
  stopDetectTimer();
  auto timer = impl_->ports.threads.currentRunLoop().scheduleRepeating(
      kDetectPeriod, impl_->keepAlive.during([this] { zel::ifMemoryAllows([this] { onDetectTimer(); }); }));
  impl_->detectTimer.set(std::move(timer));
}

void ZELCameraAccessory::stopDetectTimer() { impl_->detectTimer.set(nullptr); }

void ZELCameraAccessory::onDetectTimer() {
  const auto held = impl_->keepAlive.hold();
  const zel::LinkStatus seen = impl_->link.status();
  if (seen == zel::LinkStatus::open && impl_->parser.isNeedDataSynchronism()) impl_->parser.sendSyncData();
  impl_->link.checkSilence(seen);
}

void ZELCameraAccessory::updateReceiveSyncTimeCmdTimestamp(std::int64_t receiveTime) {
  const std::int64_t sent = impl_->session.syncTimestamp();
  const std::int64_t roundTrip = receiveTime - sent;
  impl_->syncRoundTrip.store(roundTrip);
  if (roundTrip >= kSlowRoundTrip && impl_->session.takeSyncTimeResend()) impl_->session.sendSyncTimeCmd();
  impl_->link.setTimeOffset(sent + roundTrip / 2);
}
