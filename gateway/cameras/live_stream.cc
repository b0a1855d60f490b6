#include "gateway/cameras/live_stream.h"

#include <ZELTarkaSDK/PreviewFormat.h>

#include <utility>

namespace zel::gateway {
namespace {

// A page that is loaded again finds its picture at once.
constexpr std::chrono::seconds kStaysOn{5};

LiveFeed::Options feedOptions(std::uint8_t resolution) {
  const auto format = previewFormat(resolution);
  LiveFeed::Options options;
  if (format) options.rate = format->fps;
  return options;
}

}  // namespace

LiveStream::LiveStream(Camera& camera, std::uint8_t resolution)
    : camera_(camera), resolution_(resolution), feed_(feedOptions(resolution)) {}

LiveStream::~LiveStream() { end(); }

void LiveStream::end() {
  feed_.end();
  const std::lock_guard lock(mutex_);
  isEnded_ = true;
  run_.reset();
}

std::shared_ptr<void> LiveStream::hold() {
  std::shared_ptr<void> token(holds_, this);
  std::unique_lock lock(mutex_, std::try_to_lock);
  if (lock && !run_ && !isEnded_) begin();
  return token;
}

bool LiveStream::withStream(const std::function<void(CameraStream&)>& call) {
  const std::lock_guard lock(mutex_);
  if (!run_) return false;
  call(run_->stream);
  return true;
}

bool LiveStream::isWanted(Clock::time_point now) {
  if (holds_.use_count() > 1) lastHeld_ = now;
  return lastHeld_ && now - *lastHeld_ < kStaysOn;
}

void LiveStream::look(Clock::time_point now) {
  const std::lock_guard lock(mutex_);
  const bool wanted = isWanted(now);
  if (run_ && (!wanted || run_->stream.failure())) run_.reset();
  if (!run_ && wanted && !isEnded_) begin();
}

void LiveStream::begin() {
  auto stream = camera_.beginStream({.resolution = resolution_});
  if (!stream) return;  // another one has not ended yet
  run_ = std::make_unique<Run>(*std::move(stream));
  run_->packets.each([this, run = run_.get()](const MediaPacket& packet) { feed(*run, packet); });
}

void LiveStream::feed(Run& run, const MediaPacket& packet) {
  if (!std::exchange(run.hasHeaders, true)) feed_.onHeaders(run.stream.headers());
  feed_.onPacket(packet);
}

}  // namespace zel::gateway
