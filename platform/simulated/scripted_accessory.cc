#include "platform/simulated/scripted_accessory.h"

#include <algorithm>
#include <utility>

namespace zel::platform {

// The common part of both directions: events are posted on the run loop, never delivered inside a call, and none after
// close().
template <class Port>
class ScriptedLink::ScriptedStream : public Port {
 public:
  explicit ScriptedStream(ScriptedLink& link) : link_(link), self_(std::make_shared<ScriptedStream*>(this)) {}

  void setDelegate(std::weak_ptr<StreamDelegate> delegate) override { delegate_ = std::move(delegate); }
  void scheduleInRunLoop(RunLoop& runLoop) override { runLoop_ = &runLoop; }
  void removeFromRunLoop(RunLoop& runLoop) override {
    if (runLoop_ != &runLoop) return;
    runLoop_ = nullptr;
    // Events posted there must not arrive any more.
    self_ = std::make_shared<ScriptedStream*>(this);
  }
  void open() override {
    open_ = true;
    post(StreamEvent::openCompleted);
    becameOpen();
  }
  void close() override {
    open_ = false;
    closed_ = true;
  }

  template <class Step>
  void perform(Step step) {
    runLoop_->perform([weak = std::weak_ptr(self_), step] {
      if (const auto self = weak.lock()) step(**self);
    });
  }

  void post(StreamEvent event) {
    if (runLoop_ == nullptr || !open_) return;
    perform([event](ScriptedStream& self) { self.deliver(event); });
  }

  bool hasRunLoop() const { return runLoop_ != nullptr; }
  bool isOpen() const { return open_; }
  bool isClosed() const { return closed_; }

 protected:
  virtual void becameOpen() = 0;

  ScriptedLink& link_;

  void deliver(StreamEvent event) {
    if (!open_ || over_) return;
    over_ = event == StreamEvent::errorOccurred || event == StreamEvent::endEncountered;
    if (const auto delegate = delegate_.lock()) delegate->streamHandleEvent(*this, event);
  }

 private:
  std::shared_ptr<ScriptedStream*> self_;
  std::weak_ptr<StreamDelegate> delegate_;
  RunLoop* runLoop_ = nullptr;
  bool open_ = false;
  bool closed_ = false;
  bool over_ = false;  // an error or the end was reported
};

class ScriptedLink::Input final : public ScriptedStream<InputStream> {
 public:
  using ScriptedStream::ScriptedStream;

  bool hasBytesAvailable() const override {
    return isOpen() && !failed_ && (!link_.incoming_.empty() || link_.readsFail_);
  }

  std::ptrdiff_t read(std::span<std::uint8_t> buffer) override {
    if (link_.readsFail_) {
      failed_ = true;
      post(StreamEvent::errorOccurred);
      return -1;
    }
    const std::size_t count = std::min({buffer.size(), link_.incoming_.size(), link_.readLimit_});
    std::copy_n(link_.incoming_.begin(), count, buffer.begin());
    link_.incoming_.erase(link_.incoming_.begin(), link_.incoming_.begin() + static_cast<std::ptrdiff_t>(count));
    announce();
    return static_cast<std::ptrdiff_t>(count);
  }

  // One pending event is enough. A read that leaves bytes reports them again; a delegate that does not read gets no
  // more events before new bytes arrive.
  void announce() {
    if (!isOpen() || announced_ || failed_) return;
    if (hasBytesAvailable()) {
      announceBytes();
    } else if (link_.ended_) {
      post(StreamEvent::endEncountered);
    }
  }

 private:
  // Dropped if the bytes have been read before its delivery.
  void announceBytes() {
    if (!hasRunLoop()) return;
    announced_ = true;
    perform([](ScriptedStream& stream) {
      auto& self = static_cast<Input&>(stream);
      self.announced_ = false;
      if (self.hasBytesAvailable()) self.deliver(StreamEvent::hasBytesAvailable);
    });
  }

  void becameOpen() override { announce(); }

  bool announced_ = false;
  bool failed_ = false;
};

class ScriptedLink::Output final : public ScriptedStream<OutputStream> {
 public:
  using ScriptedStream::ScriptedStream;

  bool hasSpaceAvailable() const override { return isOpen() && (link_.capacity_ > 0 || link_.writesFail_); }

  std::ptrdiff_t write(std::span<const std::uint8_t> bytes) override {
    if (link_.writesFail_) {
      post(StreamEvent::errorOccurred);
      return -1;
    }
    const std::size_t count = std::min(bytes.size(), link_.capacity_);
    if (link_.capacity_ != std::numeric_limits<std::size_t>::max()) link_.capacity_ -= count;
    link_.written_.insert(link_.written_.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
    if (count < bytes.size()) wantsSpace_ = true;
    if (link_.onWrite_) link_.onWrite_();
    return static_cast<std::ptrdiff_t>(count);
  }

  void announceSpace() {
    if (!hasSpaceAvailable()) wantsSpace_ = true;
    if (wantsSpace_ && hasSpaceAvailable()) {
      wantsSpace_ = false;
      post(StreamEvent::hasSpaceAvailable);
    }
  }

 private:
  void becameOpen() override {
    wantsSpace_ = true;
    announceSpace();
  }

  bool wantsSpace_ = true;
};

ScriptedLink::ScriptedLink() : input_(std::make_unique<Input>(*this)), output_(std::make_unique<Output>(*this)) {}
ScriptedLink::~ScriptedLink() = default;

InputStream& ScriptedLink::inputStream() { return *input_; }
OutputStream& ScriptedLink::outputStream() { return *output_; }

bool ScriptedLink::isClosed() const { return input_->isClosed() && output_->isClosed(); }

void ScriptedLink::send(const Bytes& bytes) {
  incoming_.insert(incoming_.end(), bytes.begin(), bytes.end());
  input_->announce();
}

void ScriptedLink::fire(StreamEvent event) {
  if (event == StreamEvent::hasSpaceAvailable) {
    output_->post(event);
  } else {
    input_->post(event);
  }
}

void ScriptedLink::failReads() {
  readsFail_ = true;
  input_->announce();
}

void ScriptedLink::end() {
  ended_ = true;
  input_->announce();
}

void ScriptedLink::setWriteCapacity(std::size_t count) {
  capacity_ = count;
  output_->announceSpace();
}

namespace {

class ScriptedSession final : public AccessorySession {
 public:
  explicit ScriptedSession(std::shared_ptr<ScriptedLink> link) : link_(std::move(link)) {}
  ~ScriptedSession() override {
    link_->inputStream().close();
    link_->outputStream().close();
  }
  InputStream& inputStream() override { return link_->inputStream(); }
  OutputStream& outputStream() override { return link_->outputStream(); }

 private:
  std::shared_ptr<ScriptedLink> link_;
};

}  // namespace

std::unique_ptr<AccessorySession> ScriptedAccessory::openSession() {
  if (refuses_ || !connected_) return nullptr;
  ++sessionsOpened_;
  current_ = std::make_shared<ScriptedLink>();
  return std::make_unique<ScriptedSession>(current_);
}

}  // namespace zel::platform
