#include "media/zel_decode_run_loop.h"

#include <new>
#include <utility>

#include <ZELTarkaSDK/platform/call_gate.h>

#include "base/has_memory_for.h"

using zel::hasMemoryFor;
using zel::MutexLock;

ZELDecodeRunLoop::ZELDecodeRunLoop(zel::platform::Threads& threads, std::unique_ptr<ZELH264Decoder> h264Decoder,
                                   std::weak_ptr<ZELPixelBufferDataProtocol> delegate)
    : threads_(threads), h264Decoder_(std::move(h264Decoder)), delegate_(std::move(delegate)) {}

ZELDecodeRunLoop::~ZELDecodeRunLoop() = default;

// The thread keeps the object alive until it has ended. The caller's pointer ends the thread when it is released.
std::shared_ptr<ZELDecodeRunLoop> ZELDecodeRunLoop::initWidthSps(zel::platform::Threads& threads,
                                                                 zel::platform::VideoDecoders& decoders,
                                                                 zel::ByteView sps, zel::ByteView pps,
                                                                 std::weak_ptr<ZELPixelBufferDataProtocol> delegate) {
  auto decoder = ZELH264Decoder::initWidthSps(decoders, sps, pps);
  if (!decoder) return nullptr;
  const std::shared_ptr<ZELDecodeRunLoop> kept(new ZELDecodeRunLoop(threads, std::move(decoder), std::move(delegate)));
  return {kept.get(), [kept](ZELDecodeRunLoop* loop) { loop->abandon(); }};
}

bool ZELDecodeRunLoop::start() {
  const MutexLock lock(threadMutex_);
  if (thread_) return true;
  const auto kept = shared_from_this();
  thread_ = threads_.start("preview decode", {[kept](zel::platform::RunLoop& runLoop) { kept->begin(runLoop); },
                                              [kept] { kept->withdraw(); }});
  return thread_ != nullptr;
}

void ZELDecodeRunLoop::stop() {
  const MutexLock lock(loopMutex_);
  stopRunLoop();
}

void ZELDecodeRunLoop::abandon() {
  const MutexLock lock(loopMutex_);
  become(State::abandoned);
  stopRunLoop();
}

void ZELDecodeRunLoop::stopRunLoop() {
  if (runLoop_ != nullptr) runLoop_->stop();
}

// Without memory for its source the thread ends at once.
void ZELDecodeRunLoop::begin(zel::platform::RunLoop& runLoop) {
  if (hasMemoryFor([&] { publish(runLoop); })) return;
  withoutPicture_.fetch_add(1);
  runLoop.stop();
  const MutexLock lock(loopMutex_);
  become(State::failed);
}

void ZELDecodeRunLoop::publish(zel::platform::RunLoop& runLoop) {
  const MutexLock lock(loopMutex_);
  if (state_.load() == State::abandoned) return runLoop.stop();
  source_ = runLoop.addSource([this] { decodeData(); });
  runLoop_ = &runLoop;
  become(State::running);
}

void ZELDecodeRunLoop::withdraw() {
  std::unique_ptr<zel::platform::RunLoopSource> removed;  // destroyed without the lock, which the source's task takes
  const MutexLock lock(loopMutex_);
  runLoop_ = nullptr;
  removed = std::move(source_);
  if (state_.load() == State::running) become(State::idle);
}

void ZELDecodeRunLoop::appendDecodeData(Unit unit) {
  {
    const MutexLock lock(h264DataMutex_);
    units_.fetch_add(1);
    dropped_.fetch_add(h264Datas_.append(std::move(unit)));
  }
  const MutexLock lock(loopMutex_);
  if (runLoop_ == nullptr) return;
  // Signal before asking: a loop that falls asleep after the question has seen the signal.
  source_->signal();
  if (runLoop_->isWaiting()) runLoop_->wakeUp();
}

void ZELDecodeRunLoop::decodeData() {
  if (const Unit unit = takeUnit()) {
    const zel::ByteView bytes(unit->data(), static_cast<std::size_t>(unit->size()));
    deliver(h264Decoder_->createPixelBufferUseDecodedData(bytes, static_cast<std::int64_t>(unit->timestamp())));
  }
  signalIfMoreWaits();
}

ZELDecodeRunLoop::Unit ZELDecodeRunLoop::takeUnit() {
  const MutexLock lock(h264DataMutex_);
  return h264Datas_.take();
}

// Deliberate: the receiver runs under the lock, so that no picture is polled before it was delivered.
void ZELDecodeRunLoop::deliver(const zel::platform::DecodedPicture& picture) {
  (picture.pixelBuffer ? pictures_ : withoutPicture_).fetch_add(1);
  if (!picture.pixelBuffer) return;
  const MutexLock lock(pixelBufferMutex_);
  try {
    {
      const zel::CallbackScope scope;
      if (const auto delegate = delegate_.lock()) delegate->onPixelBuffer(picture.pixelBuffer, picture.timestamp);
    }
    pixelBuffers_.append(std::make_shared<orq::MediaPixelBuffer>(picture.pixelBuffer, picture.timestamp));
  } catch (const std::bad_alloc&) {
    // The receiver has missed it, or nobody will poll it.
  }
}

// The loop is awake, because it runs this call, and needs no wakeUp().
void ZELDecodeRunLoop::signalIfMoreWaits() {
  {
    const MutexLock lock(h264DataMutex_);
    if (h264Datas_.empty()) return;
  }
  const MutexLock lock(loopMutex_);
  if (source_) source_->signal();
}

ZELDecodeRunLoop::Picture ZELDecodeRunLoop::getNextMediaPixelBuffer() {
  const MutexLock lock(pixelBufferMutex_);
  return pixelBuffers_.take();
}

zel::PreviewStatistics ZELDecodeRunLoop::statistics() const {
  return {units_.load(), dropped_.load(), withoutPicture_.load(), pictures_.load()};
}

void ZELDecodeRunLoop::clearData() {
  while (takeUnit()) continue;  // one by one: a queue to replace the old one would take memory
  while (getNextMediaPixelBuffer()) continue;
}
