#include "platform/linux/descriptor_session.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/linux/descriptor_stream.h"

namespace zel::platform {
namespace {

bool wouldBlock(int code) { return code == EAGAIN || code == EWOULDBLOCK; }

template <class Call>
ssize_t uninterrupted(Call call) {
  ssize_t count = -1;
  do {
    count = call();
  } while (count < 0 && errno == EINTR);
  return count;
}

class InputDescriptor final : public DescriptorStream {
 public:
  using DescriptorStream::DescriptorStream;

  void setEndObserver(std::function<void()> observer) { onEnd_ = std::move(observer); }

  bool hasBytes() const {
    if (!usable()) return false;
    return level_ == Level::unknown ? isReadable() : level_ == Level::some;
  }

  std::ptrdiff_t read(std::span<std::uint8_t> buffer) {
    if (!usable() || buffer.empty()) return failed_ ? -1 : 0;
    const ssize_t count = uninterrupted([&] { return ::read(descriptor(), buffer.data(), buffer.size()); });
    if (count < 0) return readFailed(errno);
    // A short read has emptied the socket; the run loop reports new bytes.
    level_ = static_cast<std::size_t>(count) == buffer.size() ? Level::some : Level::none;
    if (count == 0) streamEnded();
    return count;
  }

 private:
  enum class Level { unknown, none, some };

  void run() override { wait(Wait::wait_read); }

  // Without a delegate there is no new wait: unread bytes would end it at once, repeatedly.
  void ready() override {
    level_ = Level::some;
    if (report(StreamEvent::hasBytesAvailable)) wait(Wait::wait_read);
  }

  void streamEnded() {
    end(StreamEvent::endEncountered);
    if (onEnd_) onEnd_();
  }

  std::ptrdiff_t readFailed(int code) {
    level_ = Level::none;
    if (wouldBlock(code)) return 0;
    failed_ = true;
    end(StreamEvent::errorOccurred);
    return -1;
  }

  bool isReadable() const {
    pollfd query = {.fd = descriptor(), .events = POLLIN, .revents = 0};
    return poll(&query, 1, 0) > 0;
  }

  std::function<void()> onEnd_;
  Level level_ = Level::unknown;
  bool failed_ = false;
};

class OutputDescriptor final : public DescriptorStream {
 public:
  using DescriptorStream::DescriptorStream;

  bool hasSpace() const { return usable() && !full_; }

  std::ptrdiff_t write(std::span<const std::uint8_t> bytes) {
    if (!usable() || bytes.empty()) return failed_ ? -1 : 0;
    ssize_t count = uninterrupted([&] { return send(bytes); });
    if (count < 0 && !wouldBlock(errno)) return writeFailed();
    if (count < 0) count = 0;
    if (static_cast<std::size_t>(count) < bytes.size()) {
      full_ = true;
      wait(Wait::wait_write);
    }
    return count;
  }

 private:
  // Writing to a closed socket must not end the process by SIGPIPE. Devices never cause that signal.
  ssize_t send(std::span<const std::uint8_t> bytes) {
    if (isSocket_) {
      const ssize_t count = ::send(descriptor(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (count >= 0 || errno != ENOTSOCK) return count;
      isSocket_ = false;
    }
    return ::write(descriptor(), bytes.data(), bytes.size());
  }

  void run() override {
    if (full_) wait(Wait::wait_write);
  }

  void ready() override {
    full_ = false;
    report(StreamEvent::hasSpaceAvailable);
  }

  std::ptrdiff_t writeFailed() {
    failed_ = true;
    end(StreamEvent::errorOccurred);
    return -1;
  }

  bool isSocket_ = true;  // until send() shows otherwise
  bool full_ = false;
  bool failed_ = false;
};

// Forwards the operations of both kinds of streams.
template <class Port, class Descriptor>
class StreamOver : public Port {
 public:
  explicit StreamOver(UniqueDescriptor descriptor)
      : descriptor_(std::make_shared<Descriptor>(*this, std::move(descriptor))) {}
  ~StreamOver() override { descriptor_->close(); }
  StreamOver(const StreamOver&) = delete;
  StreamOver& operator=(const StreamOver&) = delete;

  void setDelegate(std::weak_ptr<StreamDelegate> delegate) override { descriptor_->setDelegate(std::move(delegate)); }
  void scheduleInRunLoop(RunLoop& runLoop) override { descriptor_->schedule(runLoop); }
  void removeFromRunLoop(RunLoop& runLoop) override { descriptor_->unschedule(runLoop); }
  void open() override { descriptor_->open(); }
  void close() override { descriptor_->close(); }

 protected:
  const std::shared_ptr<Descriptor> descriptor_;
};

class DescriptorInputStream final : public StreamOver<InputStream, InputDescriptor> {
 public:
  using StreamOver::StreamOver;
  bool hasBytesAvailable() const override { return descriptor_->hasBytes(); }
  std::ptrdiff_t read(std::span<std::uint8_t> buffer) override { return descriptor_->read(buffer); }
  void setEndObserver(std::function<void()> observer) { descriptor_->setEndObserver(std::move(observer)); }
};

class DescriptorOutputStream final : public StreamOver<OutputStream, OutputDescriptor> {
 public:
  using StreamOver::StreamOver;
  bool hasSpaceAvailable() const override { return descriptor_->hasSpace(); }
  std::ptrdiff_t write(std::span<const std::uint8_t> bytes) override { return descriptor_->write(bytes); }
};

class DescriptorSession final : public AccessorySession {
 public:
  DescriptorSession(UniqueDescriptor input, UniqueDescriptor output, SessionObserver observer)
      : observer_(std::move(observer)), input_(std::move(input)), output_(std::move(output)) {
    input_.setEndObserver(observer_.ended);
  }

  InputStream& inputStream() override { return input_; }
  OutputStream& outputStream() override { return output_; }
  void letGo() override {
    if (observer_.wasLetGo) observer_.wasLetGo();
  }

 private:
  const SessionObserver observer_;  // outlives the streams
  DescriptorInputStream input_;
  DescriptorOutputStream output_;
};

bool makeNonBlocking(int descriptor) {
  const int flags = fcntl(descriptor, F_GETFL);
  return flags >= 0 && fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) == 0 &&
         fcntl(descriptor, F_SETFD, FD_CLOEXEC) == 0;
}

}  // namespace

std::unique_ptr<AccessorySession> makeDescriptorSession(int descriptor, SessionObserver observer) {
  UniqueDescriptor input(descriptor);
  UniqueDescriptor output(fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
  if (!output || !makeNonBlocking(descriptor)) return nullptr;
  return std::make_unique<DescriptorSession>(std::move(input), std::move(output), std::move(observer));
}

}  // namespace zel::platform
