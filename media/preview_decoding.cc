#include "media/preview_decoding.h"

#include <utility>

#include "base/has_memory_for.h"

namespace zel {
namespace {

PreviewStatistics sum(const PreviewStatistics& a, const PreviewStatistics& b) {
  return {a.units + b.units, a.dropped + b.dropped, a.withoutPicture + b.withoutPicture, a.pictures + b.pictures};
}

}  // namespace

void PreviewDecoding::offerSps(ByteView unit) {
  const MutexLock lock(mutex_);
  sets_.offerSps(unit);
}

void PreviewDecoding::offerPps(ByteView unit) {
  ParameterSets used;
  Receiver receiver;
  std::shared_ptr<ZELDecodeRunLoop> failed;  // let go after the lock
  {
    const MutexLock lock(mutex_);
    sets_.offerPps(unit);
    if (decodeRunLoop_ && decodeRunLoop_->hasFailed()) {
      before_ = sum(before_, decodeRunLoop_->statistics());
      failed.swap(decodeRunLoop_);
    }
    if (decodeRunLoop_ || decoders_ == nullptr || !sets_.areComplete()) return;
    used = sets_;
    receiver = receiver_;
  }
  start(used, receiver);
}

// The decoder is created without the lock, because that takes time. A reset in between discards it. Without memory
// there is none, and the next pair is tried.
void PreviewDecoding::start(const ParameterSets& used, const Receiver& receiver) {
  std::shared_ptr<ZELDecodeRunLoop> made;
  bool runs = false;
  bool hadMemory = hasMemoryFor(
      [&] { made = ZELDecodeRunLoop::initWidthSps(threads_, *decoders_, used.sps(), used.pps(), receiver); });
  const MutexLock lock(mutex_);
  if (decodeRunLoop_ || !sets_.areThoseOf(used)) return;
  if (made) hadMemory = hasMemoryFor([&] { runs = made->start(); });
  if (!hadMemory) ++before_.withoutPicture;  // the sets' own unit, so that there is something to see of it
  if (!runs) {
    sets_ = {};
    return;
  }
  decodeRunLoop_ = std::move(made);
}

ParameterSets PreviewDecoding::sets() const {
  const MutexLock lock(mutex_);
  return sets_;
}

std::shared_ptr<ZELDecodeRunLoop> PreviewDecoding::decodeRunLoop() const {
  const MutexLock lock(mutex_);
  return decodeRunLoop_;
}

void PreviewDecoding::append(ZELDecodeRunLoop::Unit unit) {
  if (const auto decoding = decodeRunLoop()) decoding->appendDecodeData(std::move(unit));
}

ZELDecodeRunLoop::Picture PreviewDecoding::nextPicture() {
  const auto decoding = decodeRunLoop();
  return decoding ? decoding->getNextMediaPixelBuffer() : nullptr;
}

PreviewStatistics PreviewDecoding::statistics() const {
  const MutexLock lock(mutex_);
  return decodeRunLoop_ ? sum(before_, decodeRunLoop_->statistics()) : before_;
}

void PreviewDecoding::reset(Receiver receiver) {
  std::shared_ptr<ZELDecodeRunLoop> ended;  // released after the lock, like the former receiver
  const MutexLock lock(mutex_);
  sets_ = {};
  receiver_.swap(receiver);
  ended.swap(decodeRunLoop_);
  if (!ended) return;
  before_ = sum(before_, ended->statistics());
  ended->stop();
}

}  // namespace zel
