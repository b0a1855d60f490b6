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

// The session, as its connections see it.
// Thread: session thread.
class ConnectionOwner {
 public:
  virtual void streamFailed(SessionConnection& connection) = 0;
  // A session thread begins after waiting for the one of the connection before.
  virtual void threadBeganAfterAnother() = 0;
  // The last that the thread does to its owner.
  virtual void threadEnded() = 0;
  // Where reads go: one block, reused by every read of every connection of the session.
  virtual std::span<std::uint8_t> readBuffer() = 0;
  // Takes the time of the synchronisation command that is being built and keeps it.
  virtual std::int64_t stampSyncTime() = 0;
  // The stream has taken that many bytes.
  virtual void bytesWritten(std::size_t count) = 0;

 protected:
  ~ConnectionOwner() = default;
};

// One open session with the camera: its streams, its outbound queue and its "session thread".
// It lives as long as its thread does, which may be a little longer than the session keeps it: a session that closes
// only asks the thread to end.
//
// Owner:  the owner and the inbound stream must outlive the thread.
// Thread: any thread for the public operations, the session thread for the rest.
class SessionConnection final : public platform::StreamDelegate,
                                public std::enable_shared_from_this<SessionConnection> {
 public:
  // A connection whose thread exists and does nothing until begin(). `keepAlive` is let go as the thread's last act.
  // Errors: null where no thread can be had.
  static std::shared_ptr<SessionConnection> create(ConnectionOwner& owner, InboundStream& inbound,
                                                   std::unique_ptr<platform::AccessorySession> session,
                                                   platform::Threads& threads, std::shared_ptr<void> keepAlive);
  SessionConnection(const SessionConnection&) = delete;
  SessionConnection& operator=(const SessionConnection&) = delete;

  // Opens the streams on the session thread: from here on the camera is read. `afterAnother` tells that the thread of
  // an earlier connection had to be waited for. To be called once at most; the owner hears of the end of a thread that
  // has begun.
  void begin(bool afterAnother);

  // Asks the session thread to close the streams and to end. It may still deliver what it is at.
  void close();

  // Waits for the thread's end; on the session thread itself it returns at once.
  void join();

  // Queues the bytes as a whole and has the session thread write them.
  void writeData(ByteView bytes);

  // Bytes that are queued.
  std::size_t bytesToWrite() const { return bytesToWrite_.load(); }

  // Has the session thread send the time synchronisation.
  void sendSyncTimeCmd();

  // stream:handleEvent:
  void streamHandleEvent(platform::Stream& stream, platform::StreamEvent event) override;

 private:
  SessionConnection(ConnectionOwner& owner, InboundStream& inbound, std::unique_ptr<platform::AccessorySession> session,
                    std::shared_ptr<void> keepAlive);

  bool startThread(platform::Threads& threads);
  void runSessionThread();
  void closeSesionThread();  // "Sesion" is the interface's spelling
  void endSessionThread();
  void closeStreams();
  std::array<platform::Stream*, 2> streams();
  void performOnThread(void (SessionConnection::*step)());
  void readStreamData();
  void writeStreamData();
  void enqueue(ByteView bytes) ZEL_REQUIRES(writeDataLock_);
  void drainWriteData() ZEL_REQUIRES(writeDataLock_);
  void syncCameraSystemTimeOnThread();

  ConnectionOwner& owner_;
  InboundStream& inbound_;
  const std::unique_ptr<platform::AccessorySession> session_;
  platform::RunLoop* runLoop_ = nullptr;  // session thread only
  std::atomic<bool> begun_ = false;
  bool afterAnother_ = false;        // session thread only, once begun
  std::shared_ptr<void> keepAlive_;  // session thread only, once the thread exists
  std::atomic<bool> closed_ = false;
  std::atomic<bool> writeScheduled_ = false;  // one request to write is enough for any number of queued frames

  // Held while bytes are written as well, so that no producer sees a half-removed queue.
  Mutex writeDataLock_;
  WriteQueue writeData_ ZEL_GUARDED_BY(writeDataLock_);
  std::atomic<std::size_t> bytesToWrite_ = 0;  // as the queue has it, to be read without its lock

  Mutex threadMutex_;
  std::unique_ptr<platform::Thread> sessionThread_ ZEL_GUARDED_BY(threadMutex_);
};

}  // namespace zel
