#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include <ZELTarkaSDK/platform/accessory.h>
#include <ZELTarkaSDK/platform/clock.h>
#include <ZELTarkaSDK/platform/run_loop.h>

#include "base/mutex.h"
#include "base/wire.h"
#include "link/roles.h"
#include "link/write_queue.h"

namespace zel {

class SessionConnection;

// The session, for its connections.
// Thread: session thread.
class ConnectionOwner {
 public:
  virtual void streamFailed(SessionConnection& connection) = 0;
  // Called when a session thread begins that had to wait for the previous connection's thread.
  virtual void threadBeganAfterAnother() = 0;
  // The thread's last call to its owner.
  virtual void threadEnded() = 0;
  // The read buffer: one block for all reads of all connections of the session.
  virtual std::span<std::uint8_t> readBuffer() = 0;
  // Records and returns the time of a synchronisation command that is being built.
  virtual std::int64_t stampSyncTime() = 0;
  // The stream has accepted that many bytes.
  virtual void bytesWritten(std::size_t count) = 0;

 protected:
  ~ConnectionOwner() = default;
};

// One open session with the camera: its streams, its outbound queue and its "session thread".
// It lives until its thread has ended, which may be after the session has released it: a closing session only asks the
// thread to end.
//
// Owner:  the owner and the inbound stream must outlive the thread.
// Thread: any thread for the public operations, the session thread for the rest.
class SessionConnection final : public platform::StreamDelegate,
                                public std::enable_shared_from_this<SessionConnection> {
 public:
  // A connection whose thread exists and does nothing until begin(). `keepAlive` is released at the thread's end.
  // Errors: null when no thread can be started.
  static std::shared_ptr<SessionConnection> create(ConnectionOwner& owner, InboundStream& inbound,
                                                   std::unique_ptr<platform::AccessorySession> session,
                                                   platform::Threads& threads, std::shared_ptr<void> keepAlive);
  SessionConnection(const SessionConnection&) = delete;
  SessionConnection& operator=(const SessionConnection&) = delete;

  // Opens the streams on the session thread, which starts reading. `afterAnother`: the thread of an earlier connection
  // had to end first. Call at most once. threadEnded() is called only for a thread that has begun.
  void begin(bool afterAnother);

  // Asks the session thread to close the streams and to end. It may still deliver the current frame.
  void close();

  // Waits for the thread's end; returns at once on the session thread itself.
  void join();

  // Queues the bytes as a unit; the session thread writes them.
  // Errors: std::bad_alloc; nothing is queued then.
  void writeData(ByteView bytes);

  // Queued bytes.
  std::size_t bytesToWrite() const { return bytesToWrite_.load(); }

  // Sends the time synchronisation from the session thread.
  void sendSyncTimeCmd() { performOnThread(&SessionConnection::syncCameraSystemTimeOnThread); }

  // stream:handleEvent:
  void streamHandleEvent(platform::Stream& stream, platform::StreamEvent event) override;

 private:
  SessionConnection(ConnectionOwner& owner, InboundStream& inbound, std::unique_ptr<platform::AccessorySession> session,
                    std::shared_ptr<void> keepAlive);

  bool startThread(platform::Threads& threads);
  void runSessionThread();
  void openStreams();
  void fail();
  void handle(platform::StreamEvent event);
  void stopThread();
  void closeSesionThread();  // "Sesion" is the interface's spelling
  void endSessionThread();
  void closeStreams();
  std::array<platform::Stream*, 2> streams();
  void performOnThread(void (SessionConnection::*step)());
  void readStreamData();
  void writeStreamData();
  void scheduleWriting() ZEL_REQUIRES(writeDataLock_);
  void enqueue(ByteView bytes) ZEL_REQUIRES(writeDataLock_);
  void drainWriteData() ZEL_REQUIRES(writeDataLock_);
  void syncCameraSystemTimeOnThread();

  ConnectionOwner& owner_;
  InboundStream& inbound_;
  const std::unique_ptr<platform::AccessorySession> session_;
  platform::RunLoop* runLoop_ = nullptr;  // session thread only
  std::atomic<bool> begun_ = false;
  bool afterAnother_ = false;        // session thread only, after begin()
  std::shared_ptr<void> keepAlive_;  // session thread only
  std::atomic<bool> closed_ = false;
  std::atomic<bool> writeScheduled_ = false;  // one write task serves any number of queued frames

  // Also held while bytes are written, so that no producer sees a partly removed queue.
  Mutex writeDataLock_;
  WriteQueue writeData_ ZEL_GUARDED_BY(writeDataLock_);
  std::atomic<std::size_t> bytesToWrite_ = 0;  // the queue's size, readable without its lock

  Mutex threadMutex_;
  std::unique_ptr<platform::Thread> sessionThread_ ZEL_GUARDED_BY(threadMutex_);
};

}  // namespace zel
