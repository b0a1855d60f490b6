#include "apps/zelcam/stitched_feed.h"

#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <fmt/format.h>

namespace zel::app {
namespace {

constexpr std::int64_t kEncoderFault = 7;

}  // namespace

StitchedFeed::StitchedFeed(CameraLink& link, StreamWriter& writer, const LiveOptions& options,
                           const ArrivalClock& arrivals)
    : link_(link),
      writer_(writer),
      options_(options),
      arrivals_(arrivals),
      lag_(pictureLag(link.stack().accessory().firewareVersion(), options.resolution)) {}

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

// A renderer that can make nothing of the camera's lens offset gives no picture at all.
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
  writer_.onPicture(nalu, keyFrame, timestamp - lag_, arrivals_.of(source_->firstTimestamp() + timestamp));
}

void StitchedFeed::sourceOnAACHeader(Bytes header) { writer_.onAudioConfig(header); }
void StitchedFeed::sourceOnAACData(Bytes data, std::int64_t timestamp) { writer_.onAudio(data, timestamp); }

}  // namespace zel::app
