#include "platform/simulated/scripted_video_encoder.h"

#include <utility>

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
  std::size_t creationsToFail = 0, openingsToFail = 0, picturesToFail = 0;
  bool silent = false;
  std::function<void()> onEncode, onDestroy;
  std::vector<VideoEncoderSettings> created;
  std::size_t live = 0, attempts = 0;
  std::vector<MediaTime> times;
  std::shared_ptr<Receivers> latest = std::make_shared<Receivers>();

  std::function<void()> countAttempt() {
    ++attempts;
    return onEncode;
  }
  // Whether the picture is accepted, and whether it gives units.
  std::pair<bool, bool> take(MediaTime time) {
    if (takeOne(picturesToFail)) return {false, false};
    times.push_back(time);
    return {true, !silent};
  }
};

class ScriptedVideoEncoders::Encoder final : public VideoEncoder {
 public:
  Encoder(std::shared_ptr<Guarded<State>> state, std::shared_ptr<Receivers> receivers)
      : state_(std::move(state)), receivers_(std::move(receivers)) {}
  ~Encoder() override {
    if (const auto call = state_->get(&State::onDestroy)) call();
    receivers_->forget();
    state_->with([](State& state) { --state.live; });
  }

  bool open() override {
    return state_->with([](State& state) { return !takeOne(state.openingsToFail); });
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
    if (const auto call = state_->with([](State& state) { return state.countAttempt(); })) call();
    const auto [taken, speaks] = state_->with([time](State& state) { return state.take(time); });
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

  const std::shared_ptr<Guarded<State>> state_;
  const std::shared_ptr<Receivers> receivers_;
  bool begun_ = false;
};

ScriptedVideoEncoders::ScriptedVideoEncoders() : state_(std::make_shared<Guarded<State>>()) {}
ScriptedVideoEncoders::~ScriptedVideoEncoders() = default;

std::unique_ptr<VideoEncoder> ScriptedVideoEncoders::create(const VideoEncoderSettings& settings) {
  auto receivers = std::make_shared<Receivers>();
  const bool isMade = state_->with([&](State& state) {
    if (takeOne(state.creationsToFail)) return false;
    state.created.push_back(settings);
    ++state.live;
    state.latest = receivers;
    return true;
  });
  return isMade ? std::make_unique<Encoder>(state_, std::move(receivers)) : nullptr;
}

void ScriptedVideoEncoders::failCreations(std::size_t times) { state_->set(&State::creationsToFail, times); }
void ScriptedVideoEncoders::failOpenings(std::size_t times) { state_->set(&State::openingsToFail, times); }
void ScriptedVideoEncoders::failPictures(std::size_t attempts) { state_->set(&State::picturesToFail, attempts); }
void ScriptedVideoEncoders::beSilent() { state_->set(&State::silent, true); }

void ScriptedVideoEncoders::onDestroy(std::function<void()> call) { state_->set(&State::onDestroy, std::move(call)); }
void ScriptedVideoEncoders::onEncode(std::function<void()> call) { state_->set(&State::onEncode, std::move(call)); }

void ScriptedVideoEncoders::emitParameterSets(const Bytes& sps, const Bytes& pps) {
  state_->get(&State::latest)->tellSets(sps, pps);
}

ScriptedVideoEncoders::Bytes ScriptedVideoEncoders::emitUnit(Bytes unitBehindItsLength, bool keyFrame, MediaTime time) {
  state_->get(&State::latest)->tellUnit(unitBehindItsLength, keyFrame, time);
  return unitBehindItsLength;
}

std::vector<VideoEncoderSettings> ScriptedVideoEncoders::created() const { return state_->get(&State::created); }
std::size_t ScriptedVideoEncoders::live() const { return state_->get(&State::live); }
std::size_t ScriptedVideoEncoders::attempts() const { return state_->get(&State::attempts); }
std::vector<MediaTime> ScriptedVideoEncoders::times() const { return state_->get(&State::times); }

}  // namespace zel::platform
