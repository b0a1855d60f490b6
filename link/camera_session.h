#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "base/mutex.h"
#include "link/keep_alive.h"
#include "link/roles.h"
#include "link/session_connection.h"

// The byte stream to the camera: opens and closes it, queues written bytes, reopens it after a stream error. Each open
// session is a SessionConnection with its own thread. A new thread begins only when the previous one has ended, so only
// one reads and parses at a time, and the de-multiplexer needs no lock.
//
// Thread: any thread.
class CameraSession final : zel::ConnectionOwner {
 public:
  // Owner:  all arguments must outlive the object.
  CameraSession(const zel::platform::Ports& ports, zel::AccessoryLink& accessory, zel::InboundStream& parser);
  // Closes, and waits for the session thread.
  ~CameraSession();
  CameraSession(const CameraSession&) = delete;
  CameraSession& operator=(const CameraSession&) = delete;

  // Keeps the stack alive until the session thread has ended. Set before the first opening.
  void setKeepAlive(const zel::KeepAlive& keepAlive) { keepAlive_ = keepAlive; }

  // openSessionWithAccessory:protocol: - closes the current session and opens a new one. `accepted` is called after the
  // session was announced and before its first byte is read, with a lock held: it must not make callbacks.
  // Errors: false when no session or no thread is available, when an observer of the announcement closed the session
  //         again, or when another thread opened or closed one meanwhile.
  bool openSessionWithAccessory(const std::shared_ptr<zel::platform::Accessory>& accessory, std::string_view protocol,
                                const std::function<void()>& accepted = {});

  // Closes the current session, if any. Asks the session thread to end and does not wait. Bytes written until the next
  // opening are lost.
  void closeSession() { closeCurrent(); }

  // Whether a session exists.
  bool isOpen() const { return current() != nullptr; }

  // writeData: and writeData:length: - queue bytes for the camera, whole and in order. Dropped while closed.
  void writeData(const ZELData& data);
  void writeData(const std::uint8_t* bytes, std::int32_t length);

  // Sends the time synchronisation from the session thread.
  void sendSyncTimeCmd();

  // When the last time-synchronisation command was built, in milliseconds since 2001.
  std::int64_t syncTimestamp() const { return syncTimestamp_.load(); }

  // Remaining re-sends of the time synchronisation. 10 at first and never refilled, not even by a reconnection.
  std::int32_t syncTimeCount() const;
  // Uses one; false when none is left.
  bool takeSyncTimeResend();

  // The de-multiplexer lost its position in the stream: reopens as after a stream error.
  // Thread: session thread.
  void reopenAfterLostPosition();

  // Bytes that the streams of all sessions have accepted, and bytes that the open one has not accepted yet.
  std::uint64_t bytesWritten() const { return bytesWritten_.load(); }
  std::uint64_t bytesToWrite() const;

  // Number of stream errors.
  std::uint64_t streamErrors() const { return streamErrors_.load(); }

  // accessoryDidDisconnect: - does nothing: the accessory manager's notification ends the connection.
  void accessoryDidDisconnect(const zel::platform::Accessory&) {}

  // Waits for the session thread to end after a close; returns at once on that thread.
  void waitForThreadEnd();

 private:
  using Connection = std::shared_ptr<zel::SessionConnection>;

  void streamFailed(zel::SessionConnection& connection) override;
  void threadBeganAfterAnother() override;
  void threadEnded() override;
  std::span<std::uint8_t> readBuffer() override;
  std::int64_t stampSyncTime() override;
  void bytesWritten(std::size_t count) override { bytesWritten_.fetch_add(count); }

  void reopen(const zel::SessionConnection& failed);
  std::uint64_t closeCurrent();
  Connection takeCurrent(std::uint64_t& opening) ZEL_REQUIRES(mutex_);
  void finishClosing(const Connection& closed);
  bool openAs(std::uint64_t opening, const std::shared_ptr<zel::platform::Accessory>& accessory,
              std::string_view protocol, const std::function<void()>& accepted);
  Connection connect(const std::shared_ptr<zel::platform::Accessory>& accessory, std::string_view protocol);
  bool install(std::uint64_t opening, const Connection& connection,
               const std::shared_ptr<zel::platform::Accessory>& accessory);
  bool beginOrLeaveWaiting(const Connection& connection, const std::function<void()>& accepted);
  void begin(bool afterAnother) ZEL_REQUIRES(mutex_);
  void resetParser();
  Connection current() const;

  const zel::platform::Ports ports_;
  zel::AccessoryLink& accessory_;
  zel::InboundStream& parser_;
  zel::KeepAlive keepAlive_;              // set before the first opening
  std::vector<std::uint8_t> readBuffer_;  // session thread only
  std::atomic<std::int64_t> syncTimestamp_ = 0;
  std::atomic<std::uint64_t> streamErrors_ = 0;
  std::atomic<std::uint64_t> bytesWritten_ = 0;

  mutable zel::Mutex mutex_;
  std::int32_t syncTimeCount_ ZEL_GUARDED_BY(mutex_) = 10;
  std::uint64_t openings_ ZEL_GUARDED_BY(mutex_) = 0;  // changes with each opening and closing
  std::shared_ptr<zel::platform::Accessory> sessionAccessory_ ZEL_GUARDED_BY(mutex_);
  Connection connection_ ZEL_GUARDED_BY(mutex_);  // the open session
  bool mayBegin_ ZEL_GUARDED_BY(mutex_) = false;  // the open session is ready, and waits for the previous thread
  Connection running_ ZEL_GUARDED_BY(mutex_);     // the one whose thread is running
};
