#include "platform/simulated/scripted_video_decoder.h"

#include <utility>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

namespace zel::platform {
namespace {

template <class Value>
Value takeFirst(std::deque<Value>& values, Value otherwise) {
  if (values.empty()) return otherwise;
  Value first = std::move(values.front());
  values.pop_front();
  return first;
}

}  // namespace

struct ScriptedVideoDecoders::State {
  struct Failure {
    DecoderCreationStage failedAt;
    std::int32_t status;
  };

  // The next picture of the current size.
  PixelBufferRef picture() ZEL_REQUIRES(mutex) {
    return MemoryPixelBuffer::filled(width, height, static_cast<std::uint8_t>(++pictures), 128, 128);
  }

  mutable Mutex mutex;
  std::deque<DecodeStatus> script ZEL_GUARDED_BY(mutex);
  std::deque<Failure> failures ZEL_GUARDED_BY(mutex);
  std::function<void()> onDecode ZEL_GUARDED_BY(mutex);
  std::vector<Bytes> units ZEL_GUARDED_BY(mutex);
  Bytes sps ZEL_GUARDED_BY(mutex), pps ZEL_GUARDED_BY(mutex);
  std::int32_t width ZEL_GUARDED_BY(mutex) = 64, height ZEL_GUARDED_BY(mutex) = 32;
  std::size_t pictures ZEL_GUARDED_BY(mutex) = 0, created ZEL_GUARDED_BY(mutex) = 0;
  std::size_t failed ZEL_GUARDED_BY(mutex) = 0, live ZEL_GUARDED_BY(mutex) = 0;
  bool holdsBack ZEL_GUARDED_BY(mutex) = false;
};

class ScriptedVideoDecoders::Session final : public VideoDecoder {
 public:
  explicit Session(std::shared_ptr<State> state) : state_(std::move(state)) {}
  ~Session() override {
    const MutexLock lock(state_->mutex);
    --state_->live;
  }

  DecodeResult decode(Bytes unit, std::int64_t timestamp) override {
    if (const auto call = callBefore()) call();
    const MutexLock lock(state_->mutex);
    state_->units.emplace_back(unit.begin(), unit.end());
    const DecodeStatus status = takeFirst(state_->script, DecodeStatus::picture);
    if (status != DecodeStatus::picture) return {status, {}};
    return given({state_->picture(), timestamp}, state_->holdsBack);
  }

  DecodedPicture flush() override { return std::exchange(held_, {}); }

 private:
  std::function<void()> callBefore() const {
    const MutexLock lock(state_->mutex);
    return state_->onDecode;
  }

  DecodeResult given(DecodedPicture picture, bool holdsBack) {
    if (holdsBack) std::swap(picture, held_);
    return {picture.pixelBuffer ? DecodeStatus::picture : DecodeStatus::kept, std::move(picture)};
  }

  const std::shared_ptr<State> state_;
  DecodedPicture held_;  // the decoding thread only
};

ScriptedVideoDecoders::ScriptedVideoDecoders() : state_(std::make_shared<State>()) {}
ScriptedVideoDecoders::~ScriptedVideoDecoders() = default;

DecoderCreation ScriptedVideoDecoders::create(VideoDecoder::Bytes sps, VideoDecoder::Bytes pps) {
  const MutexLock lock(state_->mutex);
  state_->sps.assign(sps.begin(), sps.end());
  state_->pps.assign(pps.begin(), pps.end());
  if (!state_->failures.empty()) {
    const State::Failure failure = state_->failures.front();
    state_->failures.pop_front();
    ++state_->failed;
    return {nullptr, failure.failedAt, failure.status};
  }
  ++state_->created;
  ++state_->live;
  return {.decoder = std::make_unique<Session>(state_)};
}

void ScriptedVideoDecoders::script(DecodeStatus status, std::size_t units) {
  const MutexLock lock(state_->mutex);
  state_->script.insert(state_->script.end(), units, status);
}

void ScriptedVideoDecoders::failCreations(std::size_t times, DecoderCreationStage failedAt, std::int32_t status) {
  const MutexLock lock(state_->mutex);
  state_->failures.insert(state_->failures.end(), times, {failedAt, status});
}

void ScriptedVideoDecoders::setPictureSize(std::int32_t width, std::int32_t height) {
  const MutexLock lock(state_->mutex);
  state_->width = width;
  state_->height = height;
}

void ScriptedVideoDecoders::onDecode(std::function<void()> call) {
  const MutexLock lock(state_->mutex);
  state_->onDecode = std::move(call);
}

void ScriptedVideoDecoders::holdBack() {
  const MutexLock lock(state_->mutex);
  state_->holdsBack = true;
}

std::vector<ScriptedVideoDecoders::Bytes> ScriptedVideoDecoders::units() const {
  const MutexLock lock(state_->mutex);
  return state_->units;
}

std::size_t ScriptedVideoDecoders::created() const {
  const MutexLock lock(state_->mutex);
  return state_->created;
}

std::size_t ScriptedVideoDecoders::failed() const {
  const MutexLock lock(state_->mutex);
  return state_->failed;
}

std::size_t ScriptedVideoDecoders::live() const {
  const MutexLock lock(state_->mutex);
  return state_->live;
}

ScriptedVideoDecoders::Bytes ScriptedVideoDecoders::lastSps() const {
  const MutexLock lock(state_->mutex);
  return state_->sps;
}

ScriptedVideoDecoders::Bytes ScriptedVideoDecoders::lastPps() const {
  const MutexLock lock(state_->mutex);
  return state_->pps;
}

}  // namespace zel::platform
