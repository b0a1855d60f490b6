#include "outputs/stitched_feed.h"

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <fmt/format.h>

#include <utility>

namespace zel {
namespace {

constexpr std::int64_t kEncoderFault = 7;

std::uint64_t number(std::int64_t value) { return static_cast<std::uint64_t>(value); }

// Times come from the camera: a sum beyond 64 bits wraps.
std::int64_t sum(std::int64_t a, std::int64_t b) { return static_cast<std::int64_t>(number(a) + number(b)); }

}  // namespace

StitchedFeed::StitchedFeed(CameraStack& stack, std::shared_ptr<StreamCore> core, int resolution,
                           StitchedPictures pictures)
    : core_(std::move(core)),
      pictures_(std::move(pictures)),
      source_(ZELLiveDataSource::initWitCameraResolution(stack, number(resolution), number(pictures_.width),
                                                         number(pictures_.height), number(pictures_.bitrate))) {}

void StitchedFeed::start() {
  source_->setLogoImage(pictures_.logo);
  source_->setLogoAngle(static_cast<float>(pictures_.logoAngle));
  source_->setRemovePurple(pictures_.removePurple);
  source_->setDataSourceDelegate(weak_from_this());
  source_->startLiveData();
}

void StitchedFeed::stop() {
  static_cast<void>(figures());  // the player goes with the run
  source_->stopLiveData();
  gate_.close();
}

FeedFigures StitchedFeed::figures() const {
  const auto player = source_->player();
  const MutexLock lock(mutex_);
  if (player) preview_ = player->statistics();
  return {preview_, source_->statistics()};
}

// With an invalid lens offset the renderer gives no picture at all.
std::optional<std::string> StitchedFeed::failure() const {
  constexpr std::uint64_t kEnough = 10;
  const LiveStatistics now = source_->statistics();
  if (now.stitched != 0 || now.notStitched < kEnough) return std::nullopt;
  return fmt::format("no picture can be stitched with the camera's lens offset \"{}\"", source_->offset().value_or(""));
}

void StitchedFeed::sourceOnError(const ZELError& error) {
  std::string why = fmt::format("{} ({} {})", error.description.value_or("failed"), error.domain, error.code);
  if (error.code == kEncoderFault && source_->statistics().encoded == 0) {
    why += fmt::format("; pictures of {}x{} may be more than it takes", pictures_.width, pictures_.height);
  }
  gate_.enter([&] { core_->fail(std::move(why)); });
}

void StitchedFeed::sourceOnRawPixelBuffer(const platform::PixelBufferRef& picture, std::int64_t timestamp) {
  gate_.enter([&] { core_->picture(picture, sum(source_->firstTimestamp(), timestamp)); });
}

void StitchedFeed::sourceOnH264Header(Bytes sps, Bytes pps) {
  gate_.enter([&] { core_->writer.onParameterSets(sps, pps); });
}

void StitchedFeed::sourceOnH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) {
  const MediaClock::Picture picture = core_->clock.pictureOf(sum(source_->firstTimestamp(), timestamp));
  gate_.enter([&] { core_->writer.onPicture(nalu, keyFrame, picture.time, picture.arrival); });
}

// The source has just attached itself to the player; no sound of the run was delivered yet.
void StitchedFeed::sourceOnAACHeader(Bytes header) {
  gate_.enter([&] {
    core_->clock.soundConfig(header);
    core_->writer.onAudioConfig(header);
  });
  if (const auto player = source_->player()) player->setMediaDataDelegate(weak_from_this());
}

void StitchedFeed::onH264Nalu(Bytes nalu, bool, std::int64_t timestamp) {
  gate_.enter([&] { core_->clock.slice(nalu, timestamp); });
}

// The source takes pictures from its first sound on, by their reported times.
void StitchedFeed::onAACAdts(Bytes data, std::int64_t timestamp) {
  const std::int64_t time = core_->clock.sound(timestamp);
  source_->onAACAdts(data, sum(time, core_->clock.lag()));
  gate_.enter([&] { core_->writer.onAudio(data, time); });
}

}  // namespace zel
