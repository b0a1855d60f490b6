#include "apps/zelcam/stitched_feed.h"

#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <fmt/format.h>

namespace zel::app {
namespace {

constexpr std::int64_t kEncoderFault = 7;

}  // namespace

StitchedFeed::StitchedFeed(CameraLink& link, StreamWriter& writer, MediaClock& clock, const LiveOptions& options,
                           const ArrivalClock& arrivals)
    : link_(link), writer_(writer), clock_(clock), options_(options), arrivals_(arrivals) {}

void StitchedFeed::start() {
  const auto number = [](std::int64_t value) { return static_cast<std::uint64_t>(value); };
  source_ =
      ZELLiveDataSource::initWitCameraResolution(link_.stack(), number(options_.resolution), number(options_.width),
                                                 number(options_.height), number(options_.bitrate));
  source_->setLogoImage(options_.logo);
  source_->setLogoAngle(static_cast<float>(options_.logoAngle));
  source_->setRemovePurple(options_.removePurple);
  source_->setDataSourceDelegate(weak_from_this());
  source_->startLiveData();
}

void StitchedFeed::stop() {
  const FeedFigures last = figures();
  source_->stopLiveData();
  atEnd_ = last;
  atEnd_.live = source_->statistics();
}

FeedFigures StitchedFeed::figures() const {
  const auto player = source_->player();
  if (!player) return atEnd_;
  return {player->statistics(), source_->statistics()};
}

// With an invalid lens offset the renderer gives no picture at all.
std::optional<std::string> StitchedFeed::failure() const {
  constexpr std::uint64_t kEnough = 10;
  const LiveStatistics now = source_->statistics();
  if (failure_ || now.stitched != 0 || now.notStitched < kEnough) return failure_;
  return fmt::format("no picture can be stitched with the camera's lens offset \"{}\"", source_->offset().value_or(""));
}

void StitchedFeed::sourceOnError(const ZELError& error) {
  failure_ = fmt::format("{} ({} {})", error.description.value_or("failed"), error.domain, error.code);
  if (error.code == kEncoderFault && source_->statistics().encoded == 0) {
    *failure_ += fmt::format("; pictures of {}x{} may be more than it takes: try a smaller --size", options_.width,
                             options_.height);
  }
  link_.wake();
}

void StitchedFeed::sourceOnH264Header(Bytes sps, Bytes pps) { writer_.onParameterSets(sps, pps); }

void StitchedFeed::sourceOnH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) {
  const std::int64_t time = source_->firstTimestamp() + timestamp;
  writer_.onPicture(nalu, keyFrame, time, arrivals_.of(time));
}

// The source has just attached itself to the player; no sound of the run was delivered yet.
void StitchedFeed::sourceOnAACHeader(Bytes header) {
  clock_.soundConfig(header);
  writer_.onAudioConfig(header);
  if (const auto player = source_->player()) player->setMediaDataDelegate(weak_from_this());
}

void StitchedFeed::onH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) {
  clock_.slice(nalu, timestamp);
  source_->onH264Nalu(nalu, keyFrame, timestamp);
}

void StitchedFeed::onSps(Bytes sps, Bytes pps) { source_->onSps(sps, pps); }
void StitchedFeed::onAACHeader(Bytes header) { source_->onAACHeader(header); }

void StitchedFeed::onAACAdts(Bytes data, std::int64_t timestamp) {
  const std::int64_t time = clock_.sound(timestamp);
  source_->onAACAdts(data, time);
  writer_.onAudio(data, time);
}

}  // namespace zel::app
