#include "platform/simulated/scripted_video_decoder.h"

#include <deque>
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
  PixelBufferRef picture() {
    return MemoryPixelBuffer::filled(width, height, static_cast<std::uint8_t>(++pictures), 128, 128);
  }

  std::deque<DecodeStatus> script;
  std::deque<Failure> failures;
  std::function<void()> onDecode;
  std::vector<Bytes> units;
  Bytes sps, pps;
  std::int32_t width = 64, height = 32;
  std::size_t pictures = 0, created = 0, failed = 0, live = 0;
  bool holdsBack = false;
};

class ScriptedVideoDecoders::Session final : public VideoDecoder {
 public:
  explicit Session(std::shared_ptr<Guarded<State>> state) : state_(std::move(state)) {}
  ~Session() override {
    state_->with([](State& state) { --state.live; });
  }

  DecodeResult decode(Bytes unit, std::int64_t timestamp) override {
    if (const auto call = state_->get(&State::onDecode)) call();
    return state_->with([&](State& state) -> DecodeResult {
      state.units.emplace_back(unit.begin(), unit.end());
      const DecodeStatus status = takeFirst(state.script, DecodeStatus::picture);
      if (status != DecodeStatus::picture) return {status, {}};
      return given({state.picture(), timestamp}, state.holdsBack);
    });
  }

  DecodedPicture flush() override { return std::exchange(held_, {}); }

 private:
  DecodeResult given(DecodedPicture picture, bool holdsBack) {
    if (holdsBack) std::swap(picture, held_);
    return {picture.pixelBuffer ? DecodeStatus::picture : DecodeStatus::kept, std::move(picture)};
  }

  const std::shared_ptr<Guarded<State>> state_;
  DecodedPicture held_;  // the decoding thread only
};

ScriptedVideoDecoders::ScriptedVideoDecoders() : state_(std::make_shared<Guarded<State>>()) {}
ScriptedVideoDecoders::~ScriptedVideoDecoders() = default;

DecoderCreation ScriptedVideoDecoders::create(VideoDecoder::Bytes sps, VideoDecoder::Bytes pps) {
  return state_->with([&](State& state) -> DecoderCreation {
    state.sps.assign(sps.begin(), sps.end());
    state.pps.assign(pps.begin(), pps.end());
    if (!state.failures.empty()) {
      const State::Failure failure = state.failures.front();
      state.failures.pop_front();
      ++state.failed;
      return {nullptr, failure.failedAt, failure.status};
    }
    ++state.created;
    ++state.live;
    return {.decoder = std::make_unique<Session>(state_)};
  });
}

void ScriptedVideoDecoders::script(DecodeStatus status, std::size_t units) {
  state_->with([&](State& state) { state.script.insert(state.script.end(), units, status); });
}

void ScriptedVideoDecoders::failCreations(std::size_t times, DecoderCreationStage failedAt, std::int32_t status) {
  state_->with([&](State& state) { state.failures.insert(state.failures.end(), times, {failedAt, status}); });
}

void ScriptedVideoDecoders::setPictureSize(std::int32_t width, std::int32_t height) {
  state_->with([&](State& state) {
    state.width = width;
    state.height = height;
  });
}

void ScriptedVideoDecoders::onDecode(std::function<void()> call) { state_->set(&State::onDecode, std::move(call)); }

void ScriptedVideoDecoders::holdBack() { state_->set(&State::holdsBack, true); }

std::vector<ScriptedVideoDecoders::Bytes> ScriptedVideoDecoders::units() const { return state_->get(&State::units); }
std::size_t ScriptedVideoDecoders::created() const { return state_->get(&State::created); }
std::size_t ScriptedVideoDecoders::failed() const { return state_->get(&State::failed); }
std::size_t ScriptedVideoDecoders::live() const { return state_->get(&State::live); }
ScriptedVideoDecoders::Bytes ScriptedVideoDecoders::lastSps() const { return state_->get(&State::sps); }
ScriptedVideoDecoders::Bytes ScriptedVideoDecoders::lastPps() const { return state_->get(&State::pps); }

}  // namespace zel::platform
