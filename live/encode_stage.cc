#include "live/encode_stage.h"

#include <utility>

#include "base/has_memory_for.h"

namespace zel {
namespace {

constexpr int kAttempts = 1 + 3;
constexpr std::int32_t kMostFailures = 5;
constexpr std::int32_t kMilliseconds = 1000;  // a second

}  // namespace

EncodeStage::Encoder EncodeStage::open(const platform::VideoEncoderSettings& settings) {
  Encoder opened;
  ifMemoryAllows([&] {
    Encoder made = encoders_ != nullptr ? encoders_->create(settings) : nullptr;
    if (made && made->open()) opened = std::move(made);
  });
  return opened;
}

void EncodeStage::append(LiveFrame frame) {
  bool keptAll = false;
  ifMemoryAllows([&] { keptAll = pixel_queue_.append(std::move(frame)); });
  if (!keptAll) dropped_.add(1);
}

void EncodeStage::run(const std::function<bool()>& isOver, const std::function<void()>& whenFailed) {
  encodeThreadJoinLock_.lock();
  while (!isOver()) {
    if (step()) continue;
    whenFailed();
    break;
  }
  encodeThreadJoinLock_.unlock();
}

// False when the fifth picture in a row has failed.
bool EncodeStage::step() {
  const LiveFrame frame = pixel_queue_.take();
  if (!frame) {
    pixel_queue_.waitForOne(clock_);
    return true;
  }
  const bool success = encode(frame);
  (success ? encoded_ : notEncoded_).add(1);
  if (!success) return countFailure();
  encodeFailCount_.set(0);
  return true;
}

bool EncodeStage::encode(const LiveFrame& frame) {
  const Encoder encoder = encoder_.get();
  if (!encoder) return false;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    bool taken = false;
    const platform::MediaTime time{frame->timestamp, kMilliseconds};
    ifMemoryAllows([&] { taken = encoder->encodeImage(frame->pixelBuffer, time); });
    if (taken) return true;
  }
  return false;
}

bool EncodeStage::countFailure() {
  encodeFailCount_.add(1);
  if (encodeFailCount_.get() < kMostFailures) return true;
  encodeFailCount_.set(0);
  return false;
}

void EncodeStage::copyStatistics(LiveStatistics& into) const {
  into.droppedBeforeEncoding = dropped_.get();
  into.notEncoded = notEncoded_.get();
  into.encoded = encoded_.get();
}

}  // namespace zel
