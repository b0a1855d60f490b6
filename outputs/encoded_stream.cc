#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/EncodedStream.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <utility>

#include "base/shared_value.h"
#include "outputs/camera_feed.h"
#include "outputs/stitched_feed.h"
#include "outputs/stream_core.h"

namespace zel {

void FeedFigures::add(const FeedFigures& more) {
  preview.units += more.preview.units;
  preview.dropped += more.preview.dropped;
  preview.withoutPicture += more.preview.withoutPicture;
  preview.pictures += more.preview.pictures;
  live.pictures += more.live.pictures;
  live.notWanted += more.live.notWanted;
  live.droppedBeforeStitching += more.live.droppedBeforeStitching;
  live.notStitched += more.live.notStitched;
  live.stitched += more.live.stitched;
  live.droppedBeforeEncoding += more.live.droppedBeforeEncoding;
  live.notEncoded += more.live.notEncoded;
  live.encoded += more.live.encoded;
  live.units += more.live.units;
  live.droppedUnits += more.live.droppedUnits;
  live.audioFrames += more.live.audioFrames;
  live.droppedAudio += more.live.droppedAudio;
}

// Its functions stand in the class, so that they are inline and not shown to hosts.
struct EncodedStream::State {
  State(EncodedStreamReceiver& receiver, Options options)
      : core(std::make_shared<StreamCore>(receiver, std::move(options))) {}

  void start(CameraStack& stack, int resolution, const std::shared_ptr<StreamFeed>& next, bool spherical) {
    core->forgetFailure();
    core->clock.begin(stack.accessory().firewareVersion(), picturesPerSecond(resolution));
    core->writer.beginRun(spherical);
    runs.set(&Runs::feed, next);
    next->start();
  }
  std::shared_ptr<StreamFeed> running() const { return runs.get(&Runs::feed); }

  struct Runs {
    std::shared_ptr<StreamFeed> feed;  // null between two runs
    FeedFigures before;                // of the runs that have ended
  };
  const std::shared_ptr<StreamCore> core;
  Guarded<Runs> runs;
};

EncodedStream::EncodedStream(EncodedStreamReceiver& receiver) : EncodedStream(receiver, Options{}) {}

EncodedStream::EncodedStream(EncodedStreamReceiver& receiver, Options options)
    : state_(std::make_unique<State>(receiver, std::move(options))) {}

EncodedStream::~EncodedStream() { stop(); }

void EncodedStream::startCamera(CameraStack& stack, int resolution) {
  stop();
  state_->start(stack, resolution, std::make_shared<CameraFeed>(stack, state_->core, resolution), false);
}

void EncodedStream::startStitched(CameraStack& stack, int resolution, const StitchedPictures& pictures) {
  stop();
  state_->start(stack, resolution, std::make_shared<StitchedFeed>(stack, state_->core, resolution, pictures), true);
}

void EncodedStream::stop() {
  const auto feed = state_->running();
  if (!feed) return;
  feed->stop();
  state_->runs.with([&feed](State::Runs& runs) {
    runs.before.add(feed->figures());
    runs.feed.reset();
  });
}

std::optional<std::string> EncodedStream::failure() const {
  if (auto fault = state_->core->writer.written().fault) return fault;
  if (auto failure = state_->core->failure()) return failure;
  const auto feed = state_->running();
  return feed ? feed->failure() : std::nullopt;
}

EncodedStreamStatistics EncodedStream::statistics() const {
  const FeedFigures figures = state_->runs.with([](const State::Runs& runs) {
    FeedFigures all = runs.before;
    if (runs.feed) all.add(runs.feed->figures());
    return all;
  });
  const WrittenStream written = state_->core->writer.written();
  return {figures.preview,    figures.live,        written.pictures,    written.audioFrames,  written.videoBytes,
          written.audioBytes, written.newestVideo, written.newestAudio, written.droppedAudio, written.complete};
}

std::optional<std::int64_t> EncodedStream::timeOf(std::int64_t reportedTime) const {
  return state_->core->writer.timeOf(state_->core->clock.pictureOf(reportedTime).time);
}

}  // namespace zel
