#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "base/wire.h"
#include "gateway/line/camera_line.h"
#include "gateway/line/host_frames.h"
#include "platform/linux/linux_run_loop.h"
#include "platform/linux/unique_descriptor.h"

namespace zel::gateway {

// One admitted connection, between a host's stream socket and the line. It reads while the line takes what it reads,
// and writes what the line has for it.
//
// Thread: that of the run loop.
class HostSocket final : public std::enable_shared_from_this<HostSocket> {
 public:
  // moved: called after bytes of the host were taken, or it has gone: the line may have something for others.
  // buffer: for one read at a time.
  //
  // Owner:  the line, the buffer and what `moved` uses must live until end().
  HostSocket(platform::UniqueDescriptor descriptor, std::shared_ptr<platform::LinuxRunLoop> loop, CameraLine& line,
             std::span<std::uint8_t> buffer, std::function<void()> moved);
  ~HostSocket();
  HostSocket(const HostSocket&) = delete;
  HostSocket& operator=(const HostSocket&) = delete;

  // Errors: false where the system cannot watch the descriptor; the host is then gone.
  bool start();
  // Writes what waits, and goes on reading where the line takes bytes again.
  void serve(LineTime now);
  // The host has gone, or must go.
  bool isGone() const { return line_ == nullptr; }
  // Closes the connection, and takes the host from the line.
  void end();

 private:
  void waitToRead();
  void readable();
  bool receive();
  void cut(ByteView bytes, LineTime now);
  bool mayGoOn(LineTime now);
  void pauseWith(ByteView rest);
  void write();
  void waitToWrite();

  const std::shared_ptr<platform::LinuxRunLoop> loop_;
  const std::span<std::uint8_t> buffer_;
  asio::posix::stream_descriptor socket_;
  CameraLine* line_;  // null once it has gone
  const HostId host_;
  std::function<void()> moved_;
  HostFrames frames_;
  Bytes rest_;              // read, and not yet taken
  bool isPaused_ = false;   // the line takes nothing of it now
  bool isWriting_ = false;  // it waits for space
};

}  // namespace zel::gateway
