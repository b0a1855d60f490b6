#include "facade/preview.h"

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <fmt/format.h>

#include <utility>

#include "facade/camera_core.h"
#include "facade/stream_run.h"

namespace zel {
namespace {

using Reason = CameraError::Reason;

PreviewStatistics sum(const PreviewStatistics& one, const PreviewStatistics& other) {
  return {one.units + other.units, one.dropped + other.dropped, one.withoutPicture + other.withoutPicture,
          one.pictures + other.pictures};
}

// Of a connection that has brought none yet, or of none.
bool isBeforeFrames(LinkStatus status) { return status == LinkStatus::closed || status == LinkStatus::open; }

}  // namespace

std::optional<CameraError> Preview::conflict(std::uint8_t resolution) const {
  if (closed_) return closed_;
  if (!resolution_ || *resolution_ == resolution) return std::nullopt;
  return CameraError{Reason::invalid,
                     fmt::format("the preview runs at resolution {}, and can have no other, {}, at the same time",
                                 *resolution_, resolution)};
}

// -- Those who look

std::shared_ptr<detail::SubscriptionState<Picture>> Preview::look(const PictureOptions& options) {
  auto state = core_.makeSubscription<Picture>(options.queue);
  const std::lock_guard lock(mutex_);
  auto why = conflict(options.resolution);
  if (!why && core_.decoders() == nullptr) why = CameraError{Reason::media, "this platform decodes no video"};
  if (why) {
    state->end(*why);
    return state;
  }
  state->setRelease([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->lookAway();
  });
  pictures_.add(state);
  core_.decoders()->look();
  resolution_ = options.resolution;
  if (++lookers_ == 1 && !stream_ && beginsNow()) startOwn();
  return state;
}

void Preview::lookAway() {
  const std::lock_guard lock(mutex_);
  if (closed_) return;
  core_.decoders()->lookAway();
  if (--lookers_ > 0 || stream_) return;
  stopOwn();
  core_.withStack([](CameraStack& stack) { stack.ucd().msgCmdStopVPWithRebackBlock([](const auto&) {}); });
  resolution_.reset();
}

// As streams do it, past the lines of the requests: the newest start counts, and takes the answer of the one before.
void Preview::startOwn() {
  const auto started = [weak = weak_from_this()](const std::optional<ZELError>& error, const auto&) {
    const auto self = weak.lock();
    // A preview that was lost begins again with the connection.
    if (self && error && error->code != kZELErrorNotConnected) self->pictures_.endThese(errorOf("pictures", *error));
  };
  stopOwn();
  core_.withStack([&](CameraStack& stack) {
    player_ = stack.suitablePreviewPlayer();
    player_->setPixelBufferDelegate(weak_from_this());
    stack.ucd().msgCmdStartVideoWithVideoRes(*resolution_, started);
  });
}

void Preview::stopOwn() {
  const auto player = std::exchange(player_, nullptr);
  if (!player) return;
  player->setPixelBufferDelegate({});
  past_ = sum(past_, player->statistics());
}

void Preview::onPixelBuffer(const platform::PixelBufferRef& picture, std::int64_t time) {
  pictures_.publish({picture, time});
}

// -- The stream

std::optional<CameraError> Preview::begin(const std::shared_ptr<StreamRun>& run) {
  const std::lock_guard lock(mutex_);
  const bool isStitched = run->options().stitched.has_value();
  if (auto why = conflict(run->options().resolution)) return why;
  if (stream_) return CameraError{Reason::invalid, "a stream is running already; outputs can be added to it"};
  if (isStitched && core_.decoders() == nullptr) return CameraError{Reason::media, "this platform decodes no video"};
  stopOwn();
  if (isStitched) core_.decoders()->look();
  resolution_ = run->options().resolution;
  stream_ = run;
  if (beginsNow()) core_.withStack([&](CameraStack& stack) { run->startRun(stack); });
  return std::nullopt;
}

void Preview::end(const StreamRun& run) {
  const std::lock_guard lock(mutex_);
  if (stream_.get() != &run) return;
  const auto ended = std::exchange(stream_, nullptr);
  ended->stopRun();
  past_ = sum(past_, ended->statistics().preview);
  if (closed_) return;
  if (ended->options().stitched) core_.decoders()->lookAway();
  if (lookers_ == 0) return resolution_.reset();
  if (beginsNow()) startOwn();
}

std::pair<PreviewStatistics, std::optional<EncodedStreamStatistics>> Preview::statistics() {
  const std::lock_guard lock(mutex_);
  if (player_) return {sum(past_, player_->statistics()), std::nullopt};
  if (!stream_) return {past_, std::nullopt};
  auto now = stream_->statistics();
  const PreviewStatistics all = sum(past_, now.preview);
  return {all, now};
}

// -- The link and the end

// Before the first frame the camera takes no requests, or its answers come in front of the marker. What cannot begin
// yet begins with the first frame.
bool Preview::beginsNow() {
  if (isBeforeFrames(link_)) isLost_ = true;
  return !isBeforeFrames(link_);
}

void Preview::linkChanged(LinkStatus status) {
  const std::lock_guard lock(mutex_);
  if (closed_) return;
  link_ = status;
  // The camera has forgotten its preview with the session: also where another one was opened at once.
  if (isBeforeFrames(status) && resolution_ && !std::exchange(isLost_, true) && stream_) stream_->lost();
  if (status != LinkStatus::flowing || !std::exchange(isLost_, false)) return;
  if (stream_) core_.withStack([this](CameraStack& stack) { stream_->startRun(stack); });
  if (!stream_ && lookers_ > 0) startOwn();
}

void Preview::close(const CameraError& why) {
  std::shared_ptr<StreamRun> stream;
  {
    const std::lock_guard lock(mutex_);
    closed_ = why;
    stopOwn();
    stream = std::exchange(stream_, nullptr);
  }
  if (stream) {
    stream->stopRun();
    stream->endFor(why);
  }
  pictures_.end(why);
}

}  // namespace zel
