#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/platform/accessory.h>
#include <ZELTarkaSDK/platform/clock.h>
#include <ZELTarkaSDK/platform/notification_center.h>
#include <ZELTarkaSDK/platform/queues.h>
#include <ZELTarkaSDK/platform/run_loop.h>
#include <ZELTarkaSDK/platform/video_decoder.h>
#include <ZELTarkaSDK/platform/video_encoder.h>

namespace zel::platform {

// Bases for faults: each passes every operation on to the object that it wraps, so that a subclass states only what
// goes wrong. A base made with a reference does not own the object, which must outlive it.
// Thread: as the wrapped object.

class ForwardingClock : public Clock {
 public:
  explicit ForwardingClock(Clock& wrapped) : wrapped_(wrapped) {}

  double absoluteTime() const override { return wrapped_.absoluteTime(); }
  double steadyTime() const override { return wrapped_.steadyTime(); }
  void sleepFor(double seconds) override { wrapped_.sleepFor(seconds); }
  void acquire(std::binary_semaphore& semaphore) override { wrapped_.acquire(semaphore); }
  bool acquireFor(std::binary_semaphore& semaphore, double seconds) override {
    return wrapped_.acquireFor(semaphore, seconds);
  }
  std::int64_t localTimeOffset(double absoluteTime) const override { return wrapped_.localTimeOffset(absoluteTime); }

 private:
  Clock& wrapped_;
};

class ForwardingQueue : public Queue {
 public:
  explicit ForwardingQueue(Queue& wrapped) : wrapped_(wrapped) {}

  void post(Task task) override { wrapped_.post(std::move(task)); }

 private:
  Queue& wrapped_;
};

// Streams know only run loops of their own platform: schedule them on the wrapped one.
class ForwardingRunLoop : public RunLoop {
 public:
  explicit ForwardingRunLoop(RunLoop& wrapped) : wrapped_(wrapped) {}

  void perform(Task task) override { wrapped_.perform(std::move(task)); }
  std::unique_ptr<Timer> scheduleRepeating(double seconds, Task task) override {
    return wrapped_.scheduleRepeating(seconds, std::move(task));
  }
  std::unique_ptr<RunLoopSource> addSource(Task task) override { return wrapped_.addSource(std::move(task)); }
  bool isWaiting() const override { return wrapped_.isWaiting(); }
  void wakeUp() override { wrapped_.wakeUp(); }
  void stop() override { wrapped_.stop(); }

 private:
  RunLoop& wrapped_;
};

class ForwardingNotificationCenter : public NotificationCenter {
 public:
  explicit ForwardingNotificationCenter(NotificationCenter& wrapped) : wrapped_(wrapped) {}

  [[nodiscard]] std::unique_ptr<NotificationObservation> observe(std::string_view name, Observer observer) override {
    return wrapped_.observe(name, std::move(observer));
  }
  void post(const Notification& notification) override { wrapped_.post(notification); }

 private:
  NotificationCenter& wrapped_;
};

// Delegates receive the forwarding stream, not the wrapped one, so their calls are forwarded too. The run loop is
// passed on unchanged.
template <class Port>
class ForwardingStream : public Port {
 public:
  explicit ForwardingStream(Port& wrapped) : wrapped_(wrapped) {}

  void setDelegate(std::weak_ptr<StreamDelegate> delegate) override {
    relay_ = delegate.expired() ? nullptr : std::make_shared<Relay>(*this, std::move(delegate));
    wrapped_.setDelegate(relay_);
  }
  void scheduleInRunLoop(RunLoop& runLoop) override { wrapped_.scheduleInRunLoop(runLoop); }
  void removeFromRunLoop(RunLoop& runLoop) override { wrapped_.removeFromRunLoop(runLoop); }
  void open() override { wrapped_.open(); }
  void close() override { wrapped_.close(); }

 protected:
  // Forwards an event; override it to drop, repeat or change events.
  virtual void deliver(StreamDelegate& delegate, StreamEvent event) { delegate.streamHandleEvent(*this, event); }

  Port& wrapped() { return wrapped_; }
  const Port& wrapped() const { return wrapped_; }

 private:
  struct Relay final : StreamDelegate {
    Relay(ForwardingStream& told, std::weak_ptr<StreamDelegate> delegate) : stream(told), target(std::move(delegate)) {}
    void streamHandleEvent(Stream&, StreamEvent event) override {
      if (const auto delegate = target.lock()) stream.deliver(*delegate, event);
    }
    ForwardingStream& stream;
    std::weak_ptr<StreamDelegate> target;
  };

  Port& wrapped_;
  std::shared_ptr<Relay> relay_;  // destroyed with this stream, so a wrapped stream that lives longer reports to no one
};

class ForwardingInputStream : public ForwardingStream<InputStream> {
 public:
  using ForwardingStream::ForwardingStream;

  bool hasBytesAvailable() const override { return wrapped().hasBytesAvailable(); }
  std::ptrdiff_t read(std::span<std::uint8_t> buffer) override { return wrapped().read(buffer); }
};

class ForwardingOutputStream : public ForwardingStream<OutputStream> {
 public:
  using ForwardingStream::ForwardingStream;

  bool hasSpaceAvailable() const override { return wrapped().hasSpaceAvailable(); }
  std::ptrdiff_t write(std::span<const std::uint8_t> bytes) override { return wrapped().write(bytes); }
};

// Owner:  owns the wrapped session. A subclass returns its own forwarding streams.
class ForwardingAccessorySession : public AccessorySession {
 public:
  explicit ForwardingAccessorySession(std::unique_ptr<AccessorySession> wrapped) : wrapped_(std::move(wrapped)) {}

  InputStream& inputStream() override { return wrapped_->inputStream(); }
  OutputStream& outputStream() override { return wrapped_->outputStream(); }
  void letGo() override { wrapped_->letGo(); }

 private:
  std::unique_ptr<AccessorySession> wrapped_;
};

class ForwardingAccessoryManager : public AccessoryManager {
 public:
  explicit ForwardingAccessoryManager(AccessoryManager& wrapped) : wrapped_(wrapped) {}

  std::vector<std::shared_ptr<Accessory>> connectedAccessories() override { return wrapped_.connectedAccessories(); }
  void registerForLocalNotifications() override { wrapped_.registerForLocalNotifications(); }
  void unregisterForLocalNotifications() override { wrapped_.unregisterForLocalNotifications(); }
  std::unique_ptr<AccessorySession> openSession(const std::shared_ptr<Accessory>& accessory,
                                                std::string_view protocol) override {
    return wrapped_.openSession(accessory, protocol);
  }

 private:
  AccessoryManager& wrapped_;
};

// Owner:  owns the wrapped session.
class ForwardingVideoDecoder : public VideoDecoder {
 public:
  explicit ForwardingVideoDecoder(std::unique_ptr<VideoDecoder> wrapped) : wrapped_(std::move(wrapped)) {}

  DecodeResult decode(Bytes unit, std::int64_t timestamp) override { return wrapped_->decode(unit, timestamp); }
  DecodedPicture flush() override { return wrapped_->flush(); }

 private:
  std::unique_ptr<VideoDecoder> wrapped_;
};

class ForwardingVideoDecoders : public VideoDecoders {
 public:
  explicit ForwardingVideoDecoders(VideoDecoders& wrapped) : wrapped_(wrapped) {}

  DecoderCreation create(VideoDecoder::Bytes sps, VideoDecoder::Bytes pps) override {
    return wrapped_.create(sps, pps);
  }

 private:
  VideoDecoders& wrapped_;
};

// Owner:  owns the wrapped encoder.
class ForwardingVideoEncoder : public VideoEncoder {
 public:
  explicit ForwardingVideoEncoder(std::unique_ptr<VideoEncoder> wrapped) : wrapped_(std::move(wrapped)) {}

  bool open() override { return wrapped_->open(); }
  void setSpsPpsCallback(SpsPpsCallback callback) override { wrapped_->setSpsPpsCallback(std::move(callback)); }
  void setNaluCallback(NaluCallback callback) override { wrapped_->setNaluCallback(std::move(callback)); }
  bool encodeImage(const PixelBufferRef& picture, MediaTime time) override {
    return wrapped_->encodeImage(picture, time);
  }

 private:
  std::unique_ptr<VideoEncoder> wrapped_;
};

class ForwardingVideoEncoders : public VideoEncoders {
 public:
  explicit ForwardingVideoEncoders(VideoEncoders& wrapped) : wrapped_(wrapped) {}

  std::unique_ptr<VideoEncoder> create(const VideoEncoderSettings& settings) override {
    return wrapped_.create(settings);
  }

 private:
  VideoEncoders& wrapped_;
};

}  // namespace zel::platform
