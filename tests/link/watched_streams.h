#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/platform/accessory.h>

namespace zel::test {

// What a session does with its streams, and where a test comes in between.
struct StreamWatch {
  std::vector<std::string> calls;                // "input opens", "output closes", ..., in order
  std::vector<std::size_t> readSizes;            // the room that each read had
  std::vector<const std::uint8_t*> readBuffers;  // where that was
  std::function<void()> onConnect = [] {};       // while a session is being opened
  std::function<void()> onLook = [] {};          // each time that the input is asked whether there are bytes
  bool promisesBytes = false;                    // the input says that there are bytes where there are none
  int refusedWrites = 0;                         // so many writes take nothing although there is space
};

// One stream, handed through to another.
template <class Port>
class WatchedStream : public Port {
 public:
  WatchedStream(Port& stream, std::string name, StreamWatch& watch)
      : stream_(stream), watch_(watch), name_(std::move(name)) {}

  void setDelegate(std::weak_ptr<platform::StreamDelegate> delegate) override {
    note(delegate.expired() ? "forgets its delegate" : "gets a delegate");
    stream_.setDelegate(std::move(delegate));
  }
  void scheduleInRunLoop(platform::RunLoop& runLoop) override {
    note("joins the loop");
    stream_.scheduleInRunLoop(runLoop);
  }
  void removeFromRunLoop(platform::RunLoop& runLoop) override {
    note("leaves the loop");
    stream_.removeFromRunLoop(runLoop);
  }
  void open() override {
    note("opens");
    stream_.open();
  }
  void close() override {
    note("closes");
    stream_.close();
  }

 protected:
  Port& stream_;
  StreamWatch& watch_;

 private:
  void note(const char* what) { watch_.calls.push_back(name_ + ' ' + what); }

  const std::string name_;
};

class WatchedInput final : public WatchedStream<platform::InputStream> {
 public:
  using WatchedStream::WatchedStream;

  bool hasBytesAvailable() const override {
    watch_.onLook();
    return stream_.hasBytesAvailable() || watch_.promisesBytes;
  }
  std::ptrdiff_t read(std::span<std::uint8_t> buffer) override {
    watch_.readSizes.push_back(buffer.size());
    watch_.readBuffers.push_back(buffer.data());
    return stream_.read(buffer);
  }
};

class WatchedOutput final : public WatchedStream<platform::OutputStream> {
 public:
  using WatchedStream::WatchedStream;

  bool hasSpaceAvailable() const override { return stream_.hasSpaceAvailable(); }
  std::ptrdiff_t write(std::span<const std::uint8_t> bytes) override {
    if (watch_.refusedWrites > 0) {
      --watch_.refusedWrites;
      return 0;
    }
    return stream_.write(bytes);
  }
};

class WatchedSession final : public platform::AccessorySession {
 public:
  WatchedSession(std::unique_ptr<platform::AccessorySession> session, StreamWatch& watch)
      : session_(std::move(session)),
        input_(session_->inputStream(), "input", watch),
        output_(session_->outputStream(), "output", watch) {}

  platform::InputStream& inputStream() override { return input_; }
  platform::OutputStream& outputStream() override { return output_; }

 private:
  const std::unique_ptr<platform::AccessorySession> session_;
  WatchedInput input_;
  WatchedOutput output_;
};

// Another manager's accessories, whose sessions are watched.
class WatchedAccessories final : public platform::AccessoryManager {
 public:
  WatchedAccessories(platform::AccessoryManager& manager, StreamWatch& watch) : manager_(manager), watch_(watch) {}

  std::vector<std::shared_ptr<platform::Accessory>> connectedAccessories() override {
    return manager_.connectedAccessories();
  }
  void registerForLocalNotifications() override { manager_.registerForLocalNotifications(); }
  void unregisterForLocalNotifications() override { manager_.unregisterForLocalNotifications(); }
  std::unique_ptr<platform::AccessorySession> openSession(const std::shared_ptr<platform::Accessory>& accessory,
                                                          std::string_view protocol) override {
    const auto onConnect = watch_.onConnect;  // which may put another in its place
    onConnect();
    auto session = manager_.openSession(accessory, protocol);
    return session ? std::make_unique<WatchedSession>(std::move(session), watch_) : nullptr;
  }

 private:
  platform::AccessoryManager& manager_;
  StreamWatch& watch_;
};

}  // namespace zel::test
