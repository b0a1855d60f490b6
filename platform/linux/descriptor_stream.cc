#include "platform/linux/descriptor_stream.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <asio/error_code.hpp>
#include <asio/posix/stream_descriptor.hpp>

#include <cerrno>
#include <optional>
#include <utility>

#include "platform/linux/linux_run_loop.h"

namespace zel::platform {
namespace {

using Descriptor = asio::posix::stream_descriptor;

// What both directions share. Whatever waits on the run loop holds the stream, so that it may be let go while it is
// watched; after close() nothing is reported.
template <class Port, class Self>
class WatchedStream : public Port, public std::enable_shared_from_this<Self> {
 public:
  explicit WatchedStream(int descriptor) : unopened_(descriptor) {}
  ~WatchedStream() override {
    if (unopened_ >= 0) ::close(unopened_);
  }

  void setDelegate(std::weak_ptr<StreamDelegate> delegate) override { delegate_ = std::move(delegate); }
  void scheduleInRunLoop(RunLoop& runLoop) override { loop_ = dynamic_cast<LinuxRunLoop&>(runLoop).weak_from_this(); }
  void removeFromRunLoop(RunLoop&) override { loop_.reset(); }

  void open() override {
    const auto loop = loop_.lock();
    if (!loop || unopened_ < 0) return;
    descriptor_.emplace(loop->context(), std::exchange(unopened_, -1));
    later([](Self& self) { self.report(StreamEvent::openCompleted); });
    wait();
  }

  void close() override {
    over_ = true;
    descriptor_.reset();
    if (unopened_ >= 0) ::close(std::exchange(unopened_, -1));
  }

  // The last event: an error or the end.
  void finish(StreamEvent event) {
    if (over_) return;
    report(event);
    over_ = true;
  }

 protected:
  bool isUsable() const { return descriptor_.has_value() && !over_; }
  int native() { return descriptor_->native_handle(); }

  void report(StreamEvent event) {
    if (over_) return;
    if (const auto delegate = delegate_.lock()) delegate->streamHandleEvent(*this, event);
  }

  // Asks to be told when the descriptor is ready; once is enough for any number of requests.
  void wait() {
    if (!isUsable() || waiting_) return;
    waiting_ = true;
    descriptor_->async_wait(Self::kReady, [self = this->shared_from_this()](const asio::error_code& error) {
      const auto loop = self->loop_.lock();
      if (!error && loop) loop->invoke([self] { self->becameReady(); });
    });
  }

  void becameReady() {
    waiting_ = false;
    if (isUsable()) static_cast<Self*>(this)->ready();
  }

  // Events are never reported inside a call of the delegate's.
  template <class Step>
  void later(Step step) {
    if (const auto loop = loop_.lock()) loop->perform([self = this->shared_from_this(), step] { step(*self); });
  }

  void failLater() {
    later([](Self& self) { self.finish(StreamEvent::errorOccurred); });
  }

 private:
  std::weak_ptr<StreamDelegate> delegate_;
  std::weak_ptr<LinuxRunLoop> loop_;
  std::optional<Descriptor> descriptor_;
  int unopened_;
  bool waiting_ = false;
  bool over_ = false;
};

class DescriptorInput final : public WatchedStream<InputStream, DescriptorInput> {
 public:
  static constexpr auto kReady = Descriptor::wait_read;
  using WatchedStream::WatchedStream;

  // Costs no system call: after a readiness event there are bytes until a read brings fewer than it could.
  bool hasBytesAvailable() const override { return isUsable() && readable_; }

  std::ptrdiff_t read(std::span<std::uint8_t> buffer) override {
    if (!isUsable() || buffer.empty()) return 0;
    ssize_t count = 0;
    do {
      count = ::read(native(), buffer.data(), buffer.size());
    } while (count < 0 && errno == EINTR);
    readable_ = count == static_cast<ssize_t>(buffer.size());
    if (count == 0) later([](DescriptorInput& self) { self.finish(StreamEvent::endEncountered); });
    stopped_ = stopped_ || count == 0;
    if (count >= 0) return count;
    if (errno == EAGAIN) return 0;
    stopped_ = true;
    failLater();
    return -1;
  }

  void ready() {
    readable_ = true;
    report(StreamEvent::hasBytesAvailable);
    if (!stopped_) wait();
  }

 private:
  bool readable_ = false;
  bool stopped_ =
      false;  // the end or an error is on its way; a closed peer is readable for good and must not be watched
};

class DescriptorOutput final : public WatchedStream<OutputStream, DescriptorOutput> {
 public:
  static constexpr auto kReady = Descriptor::wait_write;

  explicit DescriptorOutput(int descriptor) : WatchedStream(descriptor), isSocket_(checkSocket(descriptor)) {}

  bool hasSpaceAvailable() const override { return isUsable() && writable_; }

  std::ptrdiff_t write(std::span<const std::uint8_t> bytes) override {
    if (!isUsable() || bytes.empty() || failed_) return 0;
    ssize_t count = 0;
    do {
      // A socket whose peer has gone must give an error, not a signal.
      count = isSocket_ ? ::send(native(), bytes.data(), bytes.size(), MSG_NOSIGNAL)
                        : ::write(native(), bytes.data(), bytes.size());
    } while (count < 0 && errno == EINTR);
    if (count < 0 && errno != EAGAIN) return fail();
    writable_ = count == static_cast<ssize_t>(bytes.size());
    if (!writable_) wait();
    return count < 0 ? 0 : count;
  }

  void ready() {
    writable_ = true;
    report(StreamEvent::hasSpaceAvailable);
  }

 private:
  static bool checkSocket(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISSOCK(status.st_mode);
  }

  std::ptrdiff_t fail() {
    writable_ = false;
    failed_ = true;
    failLater();
    return -1;
  }

  const bool isSocket_;
  bool writable_ = true;  // a fresh stream has space; the first event says so too
  bool failed_ = false;
};

class DescriptorSession final : public AccessorySession {
 public:
  DescriptorSession(int input, int output)
      : input_(std::make_shared<DescriptorInput>(input)), output_(std::make_shared<DescriptorOutput>(output)) {}
  ~DescriptorSession() override {
    input_->close();
    output_->close();
  }

  InputStream& inputStream() override { return *input_; }
  OutputStream& outputStream() override { return *output_; }

 private:
  std::shared_ptr<DescriptorInput> input_;
  std::shared_ptr<DescriptorOutput> output_;
};

}  // namespace

std::unique_ptr<AccessorySession> makeDescriptorSession(int descriptor) {
  const int flags = fcntl(descriptor, F_GETFL);
  const int duplicate = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
  if (flags < 0 || duplicate < 0 || fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) < 0) {
    if (duplicate >= 0) ::close(duplicate);
    ::close(descriptor);
    return nullptr;
  }
  return std::make_unique<DescriptorSession>(descriptor, duplicate);
}

}  // namespace zel::platform
