// Starting and stopping.

#include <ZELTarkaSDK/ZELLiveDataSource.h>

#include <utility>

#include <ZELTarkaSDK/platform/application_events.h>

#include "base/has_memory_for.h"
#include "live/zel_live_data_source_state.h"

using zel::MutexLock;

ZELLiveDataSource::Source ZELLiveDataSource::initWitCameraResolution(const zel::LiveParts& parts, Number resolution,
                                                                     Number stitchWidth, Number stitchHeight,
                                                                     Number bitrate) {
  std::shared_ptr<ZELLiveDataSource> source(
      new ZELLiveDataSource(std::make_unique<State>(parts, resolution, stitchWidth, stitchHeight, bitrate)));
  source->observeApplication();
  return source;
}

ZELLiveDataSource::ZELLiveDataSource(std::unique_ptr<State> state) : state_(std::move(state)) {}

ZELLiveDataSource::~ZELLiveDataSource() = default;

void ZELLiveDataSource::observeApplication() {
  const auto observe = [this](std::string_view name, void (ZELLiveDataSource::*handler)()) {
    return state_->parts.ports.notifications.observe(
        name, [weak = weak_from_this(), handler](const zel::platform::Notification&) {
          if (const auto self = weak.lock()) (self.get()->*handler)();
        });
  };
  state_->background =
      observe(zel::platform::kApplicationDidEnterBackgroundNotification, &ZELLiveDataSource::handleEnterBackground);
  state_->active = observe(zel::platform::kApplicationDidBecomeActiveNotification, &ZELLiveDataSource::handleDidActive);
}

void ZELLiveDataSource::choosePlayer() {
  auto chosen = state_->currentPlayer();
  if (!chosen) chosen = state_->parts.suitablePreviewPlayer();
  state_->player.set(std::move(chosen));
}

// Preview in a view

void ZELLiveDataSource::startPreviewWithFrame(const ZELRect& frame, ViewBlock result) {
  {
    const MutexLock lock(state_->statusLock);
    state_->isPreview.store(true);
  }
  if (!zel::hasMemoryFor([&] { startShowing(frame, result); })) fail(1, "failed to get camera demux");
}

void ZELLiveDataSource::startShowing(const ZELRect& frame, const ViewBlock& result) {
  choosePlayer();
  const auto show = [weak = weak_from_this(), frame, result](bool success, const std::optional<std::string>& offset) {
    const auto self = weak.lock();
    if (!self || !success) return;
    self->state_->settings.offset.set(offset);
    auto view = ZELRenderView::initWithFrame(self->state_->parts.ports, frame, 0);
    if (view) view->playVideoStream(self->player(), offset.value_or(""));
    if (result) result(std::move(view));
  };
  setCameraPreviewOn(true, [weak = weak_from_this(), show](bool success) {
    const auto self = weak.lock();
    if (!self || !success) return;
    if (!zel::hasMemoryFor([&] { self->getCameraMediaOffset(show); })) self->fail(3, "failed to get camera offset");
  });
}

void ZELLiveDataSource::stopPreview() {
  const MutexLock lock(state_->statusLock);
  state_->isPreview.store(false);
  if (!isLive()) releasePlayer();
}

// The start sequence

void ZELLiveDataSource::startLiveData() {
  state_->output.restart();
  {
    const MutexLock lock(state_->statusLock);
    state_->run.begin();
  }
  const bool begun = zel::hasMemoryFor([this] {
    choosePlayer();
    setCameraPreviewOn(true, whenStarted(state_->run.number(), &ZELLiveDataSource::startAudio));
  });
  if (!begun) fail(1, "failed to get camera demux");
}

// A failed step has told the delegate and ends the sequence, and so does the end of the source or the run.
ZELLiveDataSource::ResultBlock ZELLiveDataSource::whenStarted(std::uint64_t run,
                                                              void (ZELLiveDataSource::*next)(std::uint64_t)) {
  return [weak = weak_from_this(), run, next](bool success) {
    const auto self = weak.lock();
    if (!self || !success || self->state_->run.isOver(run)) return;
    if (!zel::hasMemoryFor([&] { (self.get()->*next)(run); })) self->fail(1, "failed to get camera demux");
  };
}

void ZELLiveDataSource::startAudio(std::uint64_t run) {
  setCameraAudioOn(true, whenStarted(run, &ZELLiveDataSource::fetchOffset));
}

void ZELLiveDataSource::fetchOffset(std::uint64_t run) {
  getCameraMediaOffset([weak = weak_from_this(), run, next = whenStarted(run, &ZELLiveDataSource::postAttach)](
                           bool success, const std::optional<std::string>& offset) {
    const auto self = weak.lock();
    bool isKept = success;
    if (self && success && !self->state_->run.isOver(run)) {
      isKept = zel::hasMemoryFor([&] { self->state_->settings.offset.set(offset); });
      if (!isKept) self->fail(3, "failed to get camera offset");
    }
    next(isKept);
  });
}

void ZELLiveDataSource::postAttach(std::uint64_t run) {
  state_->parts.ports.queues.globalQueue().post([self = shared_from_this(), run] { self->attach(run); });
}

void ZELLiveDataSource::attach(std::uint64_t run) {
  if (!attachToPlayer(run) || !isStitch()) return;
  const bool renders = zel::hasMemoryFor([&] {
    state_->parts.ports.queues.globalQueue().post([self = shared_from_this(), run] { self->runRenderThread(run); });
  });
  if (!renders) return fail(7, "failed to open encoder");
  if (isEncode()) startEncoding(run);
}

// The player's setters take only their own lock, and make no callbacks.
bool ZELLiveDataSource::attachToPlayer(std::uint64_t run) {
  const MutexLock lock(state_->attachMutex);
  if (state_->run.isOver(run)) return false;
  const auto attached = state_->currentPlayer();
  if (!attached) {
    fail(1, "failed to get camera demux");
    return false;
  }
  attached->setPixelBufferDelegate(weak_from_this());
  attached->setMediaDataDelegate(weak_from_this());
  return true;
}

// The stop sequence

void ZELLiveDataSource::stopLiveData() {
  State& state = *state_;
  {
    const MutexLock lock(state.attachMutex);
    if (!state.run.beginStop()) return;
  }
  state.stitching.join();
  state.encoding.join();
  zel::EncodeStage::Encoder encoder;  // destroyed without the lock, since that waits for its callbacks
  {
    const MutexLock lock(state.attachMutex);
    if (const auto attached = state.currentPlayer()) {
      attached->setMediaDataDelegate({});
      attached->setPixelBufferDelegate({});
    }
    encoder = state.encoding.install(nullptr);
  }
  encoder.reset();
  state.stitching.clear();
  state.encoding.clear();
  const MutexLock lock(state.statusLock);
  state.run.endStop();
  if (!isPreview()) releasePlayer();
}

void ZELLiveDataSource::releasePlayer() {
  state_->player.set(nullptr);
  setCameraPreviewOn(false, nullptr);
  setCameraAudioOn(false, nullptr);
}

// Application events

void ZELLiveDataSource::handleEnterBackground() {
  setCameraPreviewOn(false, [weak = weak_from_this()](bool) {
    if (const auto self = weak.lock()) self->setCameraAudioOn(false, [](bool) {});
  });
}

void ZELLiveDataSource::handleDidActive() {
  if (isLive() || isPreview()) setCameraPreviewOn(true, [](bool) {});
  if (isLive()) setCameraAudioOn(true, [](bool) {});
}
