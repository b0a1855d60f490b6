#include "platform/simulated/scripted_video_encoder.h"

#include <utility>

#include "base/mutex.h"

namespace zel::platform {
namespace {

constexpr std::uint8_t kKeyHeader = 0x65, kSliceHeader = 0x41;

// Uses one of the remaining failures.
bool takeOne(std::size_t& left) {
  if (left == 0) return false;
  --left;
  return true;
}

// An encoder's callbacks. Its destructor waits for a call in progress.
struct Receivers {
  RecursiveMutex mutex;
  VideoEncoder::SpsPpsCallback spsPps ZEL_GUARDED_BY(mutex);
  VideoEncoder::NaluCallback nalu ZEL_GUARDED_BY(mutex);

  void tellSets(const ScriptedVideoEncoders::Bytes& sps, const ScriptedVideoEncoders::Bytes& pps) {
    const MutexLock lock(mutex);
    if (!spsPps) return;
    spsPps(sps.data(), static_cast<std::int32_t>(sps.size()), pps.data(), static_cast<std::int32_t>(pps.size()));
  }
  void tellUnit(ScriptedVideoEncoders::Bytes& unit, bool keyFrame, MediaTime time) {
    const MutexLock lock(mutex);
    if (nalu) nalu(unit.data(), static_cast<std::int32_t>(unit.size()), keyFrame, time);
  }
  void forget() {
    const MutexLock lock(mutex);
    spsPps = nullptr;
    nalu = nullptr;
  }
};

}  // namespace

struct ScriptedVideoEncoders::State {
  mutable Mutex mutex;
  std::size_t creationsToFail ZEL_GUARDED_BY(mutex) = 0;
  std::size_t openingsToFail ZEL_GUARDED_BY(mutex) = 0;
  std::size_t picturesToFail ZEL_GUARDED_BY(mutex) = 0;
  bool silent ZEL_GUARDED_BY(mutex) = false;
  std::function<void()> onEncode ZEL_GUARDED_BY(mutex), onDestroy ZEL_GUARDED_BY(mutex);
  std::vector<VideoEncoderSettings> created ZEL_GUARDED_BY(mutex);
  std::size_t live ZEL_GUARDED_BY(mutex) = 0;
  std::size_t attempts ZEL_GUARDED_BY(mutex) = 0;
  std::vector<MediaTime> times ZEL_GUARDED_BY(mutex);
  std::shared_ptr<Receivers> latest ZEL_GUARDED_BY(mutex) = std::make_shared<Receivers>();

  std::function<void()> countAttempt() {
    const MutexLock lock(mutex);
    ++attempts;
    return onEncode;
  }
  std::function<void()> callAtEnd() const {
    const MutexLock lock(mutex);
    return onDestroy;
  }
  // Whether the picture is accepted, and whether it gives units.
  std::pair<bool, bool> take(MediaTime time) {
    const MutexLock lock(mutex);
    if (takeOne(picturesToFail)) return {false, false};
    times.push_back(time);
    return {true, !silent};
  }
  std::shared_ptr<Receivers> receivers() const {
    const MutexLock lock(mutex);
    return latest;
  }
};

class ScriptedVideoEncoders::Encoder final : public VideoEncoder {
 public:
  Encoder(std::shared_ptr<State> state, std::shared_ptr<Receivers> receivers)
      : state_(std::move(state)), receivers_(std::move(receivers)) {}
  ~Encoder() override {
    if (const auto call = state_->callAtEnd()) call();
    receivers_->forget();
    const MutexLock lock(state_->mutex);
    --state_->live;
  }

  bool open() override {
    const MutexLock lock(state_->mutex);
    return !takeOne(state_->openingsToFail);
  }
  void setSpsPpsCallback(SpsPpsCallback callback) override {
    const MutexLock lock(receivers_->mutex);
    receivers_->spsPps = std::move(callback);
  }
  void setNaluCallback(NaluCallback callback) override {
    const MutexLock lock(receivers_->mutex);
    receivers_->nalu = std::move(callback);
  }

  bool encodeImage(const PixelBufferRef& picture, MediaTime time) override {
    if (const auto call = state_->countAttempt()) call();
    const auto [taken, speaks] = state_->take(time);
    if (taken && speaks) tell(*picture, time);
    return taken;
  }

 private:
  void tell(const PixelBuffer& picture, MediaTime time) {
    const bool first = !std::exchange(begun_, true);
    if (first) receivers_->tellSets({0x67, 1}, {0x68, 2});
    Bytes unit = {0, 0, 0, 2, first ? kKeyHeader : kSliceHeader, picture.luma().data[0]};
    receivers_->tellUnit(unit, first, time);
  }

  const std::shared_ptr<State> state_;
  const std::shared_ptr<Receivers> receivers_;
  bool begun_ = false;
};

ScriptedVideoEncoders::ScriptedVideoEncoders() : state_(std::make_shared<State>()) {}
ScriptedVideoEncoders::~ScriptedVideoEncoders() = default;

std::unique_ptr<VideoEncoder> ScriptedVideoEncoders::create(const VideoEncoderSettings& settings) {
  auto receivers = std::make_shared<Receivers>();
  {
    const MutexLock lock(state_->mutex);
    if (takeOne(state_->creationsToFail)) return nullptr;
    state_->created.push_back(settings);
    ++state_->live;
    state_->latest = receivers;
  }
  return std::make_unique<Encoder>(state_, std::move(receivers));
}

void ScriptedVideoEncoders::failCreations(std::size_t times) {
  const MutexLock lock(state_->mutex);
  state_->creationsToFail = times;
}

void ScriptedVideoEncoders::failOpenings(std::size_t times) {
  const MutexLock lock(state_->mutex);
  state_->openingsToFail = times;
}

void ScriptedVideoEncoders::failPictures(std::size_t attempts) {
  const MutexLock lock(state_->mutex);
  state_->picturesToFail = attempts;
}

void ScriptedVideoEncoders::beSilent() {
  const MutexLock lock(state_->mutex);
  state_->silent = true;
}

void ScriptedVideoEncoders::onDestroy(std::function<void()> call) {
  const MutexLock lock(state_->mutex);
  state_->onDestroy = std::move(call);
}

void ScriptedVideoEncoders::onEncode(std::function<void()> call) {
  const MutexLock lock(state_->mutex);
  state_->onEncode = std::move(call);
}

void ScriptedVideoEncoders::emitParameterSets(const Bytes& sps, const Bytes& pps) {
  state_->receivers()->tellSets(sps, pps);
}

ScriptedVideoEncoders::Bytes ScriptedVideoEncoders::emitUnit(Bytes unitBehindItsLength, bool keyFrame, MediaTime time) {
  state_->receivers()->tellUnit(unitBehindItsLength, keyFrame, time);
  return unitBehindItsLength;
}

std::vector<VideoEncoderSettings> ScriptedVideoEncoders::created() const {
  const MutexLock lock(state_->mutex);
  return state_->created;
}

std::size_t ScriptedVideoEncoders::live() const {
  const MutexLock lock(state_->mutex);
  return state_->live;
}

std::size_t ScriptedVideoEncoders::attempts() const {
  const MutexLock lock(state_->mutex);
  return state_->attempts;
}

std::vector<MediaTime> ScriptedVideoEncoders::times() const {
  const MutexLock lock(state_->mutex);
  return state_->times;
}

}  // namespace zel::platform
