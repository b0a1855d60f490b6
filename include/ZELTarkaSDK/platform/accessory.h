#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <ZELTarkaSDK/platform/run_loop.h>

namespace zel::platform {

// Names and key of the notifications that an AccessoryManager posts while it is registered.
inline constexpr std::string_view kAccessoryDidConnectNotification = "EAAccessoryDidConnectNotification";
inline constexpr std::string_view kAccessoryDidDisconnectNotification = "EAAccessoryDidDisconnectNotification";
inline constexpr std::string_view kAccessoryKey = "EAAccessoryKey";

// An attached accessory's description of itself.
struct AccessoryDescription {
  std::uint64_t connectionID = 0;  // a new one for each attachment
  std::string manufacturer;
  std::string name;
  std::string modelNumber;
  std::string serialNumber;
  std::string firmwareRevision;
  std::string hardwareRevision;
  std::vector<std::string> protocolStrings;
  std::string dockType;

  bool operator==(const AccessoryDescription&) const = default;
};

// One attached accessory. The object outlives the attachment.
// Thread: any thread.
class Accessory {
 public:
  virtual ~Accessory() = default;

  virtual const AccessoryDescription& description() const = 0;

  // Whether it is still attached.
  virtual bool isConnected() const = 0;

  // The platform's foundation version; accessories have a dock type from 1240.1 on.
  virtual double foundationVersion() const = 0;
};

enum class StreamEvent : std::uint32_t {
  openCompleted = 1,
  hasBytesAvailable = 2,
  hasSpaceAvailable = 4,
  errorOccurred = 8,
  endEncountered = 16,
};

class Stream;

// Receives a stream's events.
// Thread: the thread of the run loop that the stream is scheduled on; never inside a call into the stream.
class StreamDelegate {
 public:
  virtual void streamHandleEvent(Stream& stream, StreamEvent event) = 0;

 protected:
  ~StreamDelegate() = default;
};

// One direction of an accessory's byte stream, non-blocking.
// It reports openCompleted once after open(); errorOccurred or endEncountered at most once, as its last event.
// Thread: one thread, that of its run loop, from open() to close(); set-up may be done there or before.
class Stream {
 public:
  virtual ~Stream() = default;

  // The delegate is held weakly; an empty pointer ends the reports.
  virtual void setDelegate(std::weak_ptr<StreamDelegate> delegate) = 0;

  // Reports events on that run loop, which must be of the same platform.
  virtual void scheduleInRunLoop(RunLoop& runLoop) = 0;
  virtual void removeFromRunLoop(RunLoop& runLoop) = 0;

  virtual void open() = 0;

  // No event is reported after it. Closing twice is allowed.
  virtual void close() = 0;
};

class InputStream : public Stream {
 public:
  // True while a read would bring bytes. After the last has-bytes event it may be true once without bytes following.
  virtual bool hasBytesAvailable() const = 0;

  // Reads up to buffer.size() bytes. Returns their count, 0 when there are none or the stream has ended, -1 on an
  // error. hasBytesAvailable is reported again while bytes are left unread.
  virtual std::ptrdiff_t read(std::span<std::uint8_t> buffer) = 0;
};

class OutputStream : public Stream {
 public:
  // True when a write would accept at least one byte.
  virtual bool hasSpaceAvailable() const = 0;

  // Writes as much as the stream takes. Returns the count, 0 when there is no space, -1 on an error.
  // A count below bytes.size() is followed by hasSpaceAvailable when there is space again.
  virtual std::ptrdiff_t write(std::span<const std::uint8_t> bytes) = 0;
};

// An open session with an accessory. Destroying it closes both streams.
class AccessorySession {
 public:
  virtual ~AccessorySession() = default;

  virtual InputStream& inputStream() = 0;
  virtual OutputStream& outputStream() = 0;

  // The host no longer needs this session. It closes the streams later, on their thread, and may open another session
  // with the same accessory before that.
  //
  // Thread: any thread.
  virtual void letGo() {}
};

// The accessories attached to the host.
// Thread: any thread. Notifications are posted on the main queue's thread.
class AccessoryManager {
 public:
  virtual ~AccessoryManager() = default;

  // The attached accessories, in the order of their connection identifiers.
  virtual std::vector<std::shared_ptr<Accessory>> connectedAccessories() = 0;

  // Starts and stops posting the two notifications, each with the accessory under kAccessoryKey. Calls are counted:
  // posting stops with the last unregistration. An extra unregistration does nothing.
  virtual void registerForLocalNotifications() = 0;
  virtual void unregisterForLocalNotifications() = 0;

  // Opens a session for a protocol that the accessory offers. A platform may let only one host use an accessory at a
  // time. The accessory then stays with this host from its first session until it unregisters, also between two
  // sessions.
  //
  // Errors: null when the accessory is detached, does not offer the protocol, cannot be connected or is used by another
  //         host.
  virtual std::unique_ptr<AccessorySession> openSession(const std::shared_ptr<Accessory>& accessory,
                                                        std::string_view protocol) = 0;
};

}  // namespace zel::platform
