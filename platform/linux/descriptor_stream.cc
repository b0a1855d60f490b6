#include "platform/linux/descriptor_stream.h"

#include <utility>

#include "base/has_memory_for.h"

namespace zel::platform {

DescriptorStream::DescriptorStream(Stream& stream, UniqueDescriptor descriptor)
    : stream_(&stream), descriptor_(std::move(descriptor)) {}

DescriptorStream::~DescriptorStream() { stopWaiting(); }

void DescriptorStream::setDelegate(std::weak_ptr<StreamDelegate> delegate) {
  delegate_ = std::move(delegate);
  if (running() && !delegate_.expired()) later(&DescriptorStream::begin);
}

void DescriptorStream::schedule(RunLoop& runLoop) {
  if (stream_ == nullptr || loop_.get() == &runLoop) return;
  stopWaiting();
  loop_ = static_cast<LinuxRunLoop&>(runLoop).shared_from_this();
  ++schedule_;
  start();
}

void DescriptorStream::unschedule(RunLoop& runLoop) {
  if (loop_.get() != &runLoop) return;
  stopWaiting();
  ++schedule_;
  loop_ = nullptr;
}

void DescriptorStream::open() {
  if (stream_ == nullptr || opened_) return;
  opened_ = true;
  start();
}

// The run loop must be released, because its pending wait holds this object, and this object holds the loop.
void DescriptorStream::close() {
  stopWaiting();
  ++schedule_;
  opened_ = false;
  stream_ = nullptr;
  delegate_.reset();
  loop_ = nullptr;
  descriptor_.reset();
}

void DescriptorStream::start() {
  if (opened_ && loop_) later(&DescriptorStream::begin);
}

void DescriptorStream::later(void (DescriptorStream::*step)()) {
  loop_->perform([self = shared_from_this(), step, schedule = schedule_] {
    if (self->schedule_ == schedule) (*self.*step)();
  });
}

void DescriptorStream::begin() {
  if (!std::exchange(told_, true)) report(StreamEvent::openCompleted);
  if (ending_) return finish();
  if (running()) run();
}

bool DescriptorStream::report(StreamEvent event) {
  const auto delegate = delegate_.lock();
  if (!delegate || stream_ == nullptr) return false;
  delegate->streamHandleEvent(*stream_, event);
  return true;
}

void DescriptorStream::end(StreamEvent event) {
  if (ending_) return;
  ending_ = event;
  stopWaiting();
  if (loop_) later(&DescriptorStream::finish);
}

void DescriptorStream::finish() {
  // Not before openCompleted: begin() is then still queued, and calls this again.
  if (!told_ || !opened_ || std::exchange(finished_, true)) return;
  report(*ending_);
}

void DescriptorStream::wait(Wait what) {
  if (waiting_ || ending_ || !running()) return;
  if (!watch()) return end(StreamEvent::errorOccurred);
  waiting_ = hasMemoryFor([&] {
    watched_->async_wait(what, loop_->handler([self = shared_from_this(), wait = waits_](const std::error_code& error) {
      if (self->waits_ != wait) return;
      self->waiting_ = false;
      if (error) return self->end(StreamEvent::errorOccurred);
      self->ready();
    }));
  });
  if (!waiting_) end(StreamEvent::errorOccurred);
}

bool DescriptorStream::watch() {
  if (watched_) return true;
  std::error_code error;
  watched_.emplace(loop_->context());
  watched_->assign(descriptor_.get(), error);
  if (error) watched_.reset();
  return !error;
}

void DescriptorStream::stopWaiting() {
  ++waits_;
  waiting_ = false;
  if (!watched_) return;
  watched_->release();  // keeps the descriptor
  watched_.reset();
}

}  // namespace zel::platform
