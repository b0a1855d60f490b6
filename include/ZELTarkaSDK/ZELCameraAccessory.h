#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include <ZELTarkaSDK/LinkStatus.h>
#include <ZELTarkaSDK/Observation.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELCameraAccessoryDelegate.h>
#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/platform/export.h>

class CameraDataParser;
class CameraSession;
class ZELTunnelService;

namespace zel {
class KeepAlive;
namespace platform {
class Accessory;
class NotificationObservation;
struct Notification;
struct Ports;
}  // namespace platform
}  // namespace zel

// Notifications posted when the camera is attached and detached ("DisConnect" is the interface's spelling), and the key
// under which both carry the platform's accessory.
inline constexpr std::string_view kZELCameraDidConnectNotification = "ZELCameraDidConnectNotification";
inline constexpr std::string_view kZELCameraDidDisConnectNotification = "ZELCameraDidDisConnectNotification";
inline constexpr std::string_view kZELCameraConnectAccessoryKey = "ZELCameraConnectAccessoryKey";

// Manages the camera connection: finds the camera among the accessories, opens its session, detects a silent link and
// holds the clock offset.
//
// Units:  timeOffset in milliseconds; firewareVersion ("fireware" is the interface's spelling) as the camera counts it.
// Owner:  a stack may destroy its own inside any callback. A host destroys its own outside callbacks.
// Thread: open, close and the accessory notifications on the main thread, or any thread with a running run loop, which
//         then carries the detect timer; the properties may be read on any thread.
class ZEL_EXPORT ZELCameraAccessory {
 public:
  using StatusObserver = std::function<void(std::uint64_t)>;

  // The accessory object of the process-wide stack.
  static ZELCameraAccessory& defaultCamera();

  // serialNumber: the one accessory to connect to; empty takes the first that speaks the camera's protocol.
  // Owner:  ports and parser must outlive the object.
  ZELCameraAccessory(const zel::platform::Ports& ports, CameraDataParser& parser, std::string serialNumber = {});
  ~ZELCameraAccessory();
  ZELCameraAccessory(const ZELCameraAccessory&) = delete;
  ZELCameraAccessory& operator=(const ZELCameraAccessory&) = delete;

  // The link's state, as the interface's number and by its name.
  std::uint64_t status() const;
  zel::LinkStatus linkStatus() const { return zel::LinkStatus{status()}; }

  // Calls the observer with each new value of `status`, a LinkStatus's number, on the thread that changes it. Two
  // threads may change it at nearly the same time; status() always tells the latest.
  //
  // Thread: one observer is never called by two threads at once. When a callback changes the status while another
  //         thread is inside the observer, that thread calls the observer next.
  [[nodiscard]] zel::Observation observeStatus(StatusObserver observer);

  // The connected accessory, null when there is none.
  std::shared_ptr<const ZELAccessoryInfo> accessoryInfo() const;

  // The number after the last "_" of the firmware revision; 0 where there is none or no accessory.
  std::int64_t firewareVersion() const;

  // Added to camera timestamps to get phone time; 0 until it has been measured.
  std::int64_t timeOffset() const;

  // Round trip of the last time synchronisation in milliseconds; -1 before the first.
  std::int64_t syncRoundTrip() const;

  // When data last arrived, in seconds since 1 January 2001 UTC; -1 while closed.
  double lastReceivedDataTimer() const;

  // Held weakly.
  void setDelegate(std::weak_ptr<ZELCameraAccessoryDelegate> delegate);
  std::shared_ptr<ZELCameraAccessoryDelegate> delegate() const;

  // Starts watching and connects to a camera that is already attached. Returns it, or null when none is attached yet; a
  // camera attached later is connected automatically.
  std::shared_ptr<const ZELAccessoryInfo> openCamera();

  // Closes the connection and stops watching. Inside a callback it does not wait: an observer that runs on another
  // thread may still be finishing.
  void closeCamera();

  // connectCamera: - connects to the accessory if it speaks the camera's protocol and a session opens.
  bool connectCamera(const std::shared_ptr<zel::platform::Accessory>& accessory);

  // Start and end of the supervised connection. Opening always reports the tunnel service's failure to the delegate and
  // goes on regardless: the service is a placeholder, and hosts have come to know the report.
  void openConnection();
  void closeConnection();

  // writeData: - queues bytes for the camera. Without a session they are dropped.
  // Thread: any thread.
  void writeData(const ZELData& data);

  // Called by the transport: a frame was routed; a session has opened; synchronise the clocks; the camera's answer to
  // that. receivedData and the answer count only while a session is open.
  void receivedData();
  void successCreateSession();
  void sendSyncTimeCmd();
  void updateReceiveSyncTimeCmdTimestamp(std::int64_t receiveTime);

  // The check for a silent link, once a second on the run loop of the calling thread.
  void startDetectTimer();
  void stopDetectTimer();
  void onDetectTimer();

  // accessoryDidConnectNotification:, accessoryDidDisconnectNotification: - the platform announced an accessory.
  void accessoryDidConnectNotification(const zel::platform::Notification& notification);
  void accessoryDidDisconnectNotification(const zel::platform::Notification& notification);

  // simulatorConnectToHost:port: - does nothing; kept for hosts that call it.
  static void simulatorConnectToHost(std::string_view host, int port);

  // What is held while this object calls out. Set by the stack, before the first opening.
  void setKeepAlive(const zel::KeepAlive& keepAlive);

  CameraSession& cameraSession();
  ZELTunnelService& tunnelService();

 private:
  struct Impl;
  std::shared_ptr<const ZELAccessoryInfo> watchAndConnect();
  void connectAndTell(const zel::platform::Notification& notification);
  void setAccessoryInfo(std::shared_ptr<const ZELAccessoryInfo> info);
  bool isWanted(const zel::platform::Accessory& accessory) const;
  std::unique_ptr<zel::platform::NotificationObservation> observe(
      std::string_view name, void (ZELCameraAccessory::*handle)(const zel::platform::Notification&));

  std::unique_ptr<Impl> impl_;
};
