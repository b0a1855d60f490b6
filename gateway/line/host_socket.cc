#include "gateway/line/host_socket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <utility>

#include "base/has_memory_for.h"

namespace zel::gateway {
namespace {

constexpr std::size_t kPieces = 64;  // of one write

bool wouldBlock(int code) { return code == EAGAIN || code == EWOULDBLOCK || code == EINTR; }

LineTime timeNow() { return std::chrono::steady_clock::now(); }

}  // namespace

HostSocket::HostSocket(platform::UniqueDescriptor descriptor, std::shared_ptr<platform::LinuxRunLoop> loop,
                       CameraLine& line, std::span<std::uint8_t> buffer, std::function<void()> moved)
    : loop_(std::move(loop)),
      buffer_(buffer),
      socket_(loop_->context()),
      line_(&line),
      host_(line.admit(timeNow())),
      moved_(std::move(moved)) {
  std::error_code error;
  socket_.assign(descriptor.get(), error);
  if (!error) descriptor.release();
}

HostSocket::~HostSocket() { end(); }

bool HostSocket::start() {
  if (!socket_.is_open()) end();
  if (!isGone()) waitToRead();
  return !isGone();
}

void HostSocket::end() {
  if (isGone()) return;
  std::exchange(line_, nullptr)->leave(host_, timeNow());
  std::error_code ignored;
  socket_.close(ignored);
}

void HostSocket::waitToRead() {
  const bool waits = hasMemoryFor([this] {
    socket_.async_wait(asio::posix::stream_descriptor::wait_read,
                       loop_->handler([weak = weak_from_this()](const std::error_code& error) {
                         const auto self = weak.lock();
                         if (!self || self->isGone()) return;
                         if (error) self->end();
                         self->readable();
                       }));
  });
  if (!waits) end();
}

void HostSocket::readable() {
  const auto moved = moved_;  // the host may end inside
  if (!isGone() && (!hasMemoryFor([this] {
        if (!receive()) end();
      })))
    end();
  if (!isGone() && !isPaused_) waitToRead();
  moved();
}

// False where the host has gone.
bool HostSocket::receive() {
  const ssize_t count = ::recv(socket_.native_handle(), buffer_.data(), buffer_.size(), MSG_DONTWAIT);
  if (count < 0) return wouldBlock(errno);
  if (count == 0) return false;
  cut(ByteView(buffer_).first(static_cast<std::size_t>(count)), timeNow());
  return true;
}

void HostSocket::cut(ByteView bytes, LineTime now) {
  if (frames_.isInFile()) line_->fileMoved(now);
  for (;;) {
    if (!mayGoOn(now)) return pauseWith(bytes);
    frames_.admitFile();
    auto frame = frames_.take(bytes);
    if (frames_.isFaulty()) return end();
    if (frame) line_->take(host_, *std::move(frame), now);
    if (!frame && !frames_.awaitsAdmission()) return;
  }
}

bool HostSocket::mayGoOn(LineTime now) {
  return line_->mayRead(host_) && (!frames_.awaitsAdmission() || line_->mayBeginFile(host_, now));
}

void HostSocket::pauseWith(ByteView rest) {
  rest_.assign(rest.begin(), rest.end());
  isPaused_ = true;
}

void HostSocket::serve(LineTime now) {
  if (isGone()) return;
  if (line_->isCutOff(host_)) return end();
  if (isPaused_ && mayGoOn(now)) {
    isPaused_ = false;
    const Bytes rest = std::exchange(rest_, {});
    cut(rest, now);
    if (!isGone() && !isPaused_) waitToRead();
  }
  if (!isGone() && !isWriting_) write();
}

void HostSocket::write() {
  HostQueue& queue = line_->queueOf(host_);
  std::array<ByteView, kPieces> pieces;
  std::array<iovec, kPieces> vectors{};
  while (!queue.empty()) {
    const std::size_t count = queue.front(pieces);
    std::size_t size = 0;
    for (std::size_t i = 0; i < count; ++i) {
      vectors[i] = {const_cast<std::uint8_t*>(pieces[i].data()), pieces[i].size()};
      size += pieces[i].size();
    }
    const msghdr message = {.msg_name = nullptr,
                            .msg_namelen = 0,
                            .msg_iov = vectors.data(),
                            .msg_iovlen = count,
                            .msg_control = nullptr,
                            .msg_controllen = 0,
                            .msg_flags = 0};
    const ssize_t sent = ::sendmsg(socket_.native_handle(), &message, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0 && !wouldBlock(errno)) return end();
    if (sent > 0) queue.written(static_cast<std::size_t>(sent));
    if (sent < 0 || static_cast<std::size_t>(sent) < size) return waitToWrite();
  }
}

void HostSocket::waitToWrite() {
  isWriting_ = hasMemoryFor([this] {
    socket_.async_wait(asio::posix::stream_descriptor::wait_write,
                       loop_->handler([weak = weak_from_this()](const std::error_code& error) {
                         const auto self = weak.lock();
                         if (!self || self->isGone()) return;
                         self->isWriting_ = false;
                         if (error) self->end();
                         const auto moved = self->moved_;
                         moved();
                       }));
  });
  if (!isWriting_) end();
}

}  // namespace zel::gateway
