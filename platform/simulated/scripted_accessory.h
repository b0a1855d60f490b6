#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/platform/accessory.h>

namespace zel::platform {

// The camera's end of one session, and the host's two streams. A test controls every read, write and event.
// Thread: that of the simulated platform.
class ScriptedLink : public std::enable_shared_from_this<ScriptedLink> {
 public:
  using Bytes = std::vector<std::uint8_t>;

  ScriptedLink();
  ~ScriptedLink();

  // Bytes for the host to read.
  void send(const Bytes& bytes);
  // Sends an event without a cause: space on the output, anything else on the input.
  void fire(StreamEvent event);
  // Limits the bytes of each read.
  void setReadLimit(std::size_t count) { readLimit_ = count; }
  // From now on every read, or write, fails, and the stream reports an error event.
  void failReads();
  void failWrites() { writesFail_ = true; }
  // The camera closes its side.
  void end();
  // The output accepts that many more bytes; if it had no space, it reports hasSpaceAvailable.
  void setWriteCapacity(std::size_t count);

  // The bytes that the host wrote: all, or those since the last take.
  const Bytes& written() const { return written_; }
  Bytes takeWritten() { return std::exchange(written_, {}); }
  // Called after each write of the host.
  void onWrite(std::function<void()> call) { onWrite_ = std::move(call); }

  // Whether the host has closed both streams.
  bool isClosed() const;

  InputStream& inputStream();
  OutputStream& outputStream();

 private:
  template <class Port>
  class ScriptedStream;
  class Input;
  class Output;

  std::unique_ptr<Input> input_;
  std::unique_ptr<Output> output_;
  Bytes incoming_;
  Bytes written_;
  std::size_t readLimit_ = std::numeric_limits<std::size_t>::max();
  std::size_t capacity_ = std::numeric_limits<std::size_t>::max();
  bool readsFail_ = false;
  bool writesFail_ = false;
  bool ended_ = false;
  std::function<void()> onWrite_;
};

// An accessory that a test attaches.
class ScriptedAccessory final : public Accessory {
 public:
  explicit ScriptedAccessory(AccessoryDescription description) : description_(std::move(description)) {}

  const AccessoryDescription& description() const override { return description_; }
  bool isConnected() const override { return connected_; }
  double foundationVersion() const override { return 1240.1; }

  void refuseSessions(bool refuse) { refuses_ = refuse; }
  int sessionsOpened() const { return sessionsOpened_; }

  // The newest session; null before the first.
  ScriptedLink* current() const { return current_.get(); }

  // For the accessory manager.
  void detach() { connected_ = false; }
  std::unique_ptr<AccessorySession> openSession();

 private:
  AccessoryDescription description_;
  bool connected_ = true;
  bool refuses_ = false;
  int sessionsOpened_ = 0;
  std::shared_ptr<ScriptedLink> current_;
};

}  // namespace zel::platform
