#include "apps/zelcam/commands/passed_feed.h"

#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <fmt/format.h>

#include <utility>

#include <ZELTarkaSDK/platform/application_events.h>

namespace zel::app {
namespace {

constexpr std::uint8_t kSoundOff = 0, kSoundOn = 1;

}  // namespace

PassedFeed::PassedFeed(CameraLink& link, StreamWriter& writer, MediaClock& clock, int resolution)
    : link_(link), writer_(writer), clock_(clock), resolution_(resolution) {}

void PassedFeed::start() {
  auto& notifications = link_.stack().ports().notifications;
  background_ = notifications.observe(platform::kApplicationDidEnterBackgroundNotification,
                                      [this](const platform::Notification&) { switchOff(); });
  active_ = notifications.observe(platform::kApplicationDidBecomeActiveNotification,
                                  [this](const platform::Notification&) { switchOn(); });
  player_ = link_.stack().suitablePreviewPlayer();
  player_->setFps(picturesPerSecond(resolution_));
  player_->setMediaDataDelegate(weak_from_this());
  switchOn();
}

void PassedFeed::stop() {
  background_.reset();
  active_.reset();
  player_->setMediaDataDelegate({});
  switchOff();
}

void PassedFeed::switchOn() {
  ZELCameraUCD& ucd = link_.stack().ucd();
  const auto preview = failureOf("failed to open camera video stream");
  ucd.msgCmdStartVideoWithVideoRes(static_cast<std::uint8_t>(resolution_),
                                   [preview](const auto& error, const auto&) { preview(error); });
  ucd.msgReqSwitchAudioStreamType(kSoundOn, failureOf("failed to switch audio"));
}

void PassedFeed::switchOff() {
  link_.stack().ucd().msgCmdStopVPWithRebackBlock([](const auto&) {});
  link_.stack().ucd().msgReqSwitchAudioStreamType(kSoundOff, [](const auto&) {});
}

std::function<void(const std::optional<ZELError>&)> PassedFeed::failureOf(std::string what) {
  return [weak = weak_from_this(), what = std::move(what)](const std::optional<ZELError>& error) {
    const auto self = weak.lock();
    if (!self || !error) return;
    self->link_.platform().ports().queues.mainQueue().post([weak, what] {
      const auto there = weak.lock();
      if (!there) return;
      there->failure_ = what;
      there->link_.wake();
    });
  };
}

FeedFigures PassedFeed::figures() const {
  FeedFigures figures;
  figures.preview.units = units_.load();
  return figures;
}

void PassedFeed::onSps(Bytes sps, Bytes pps) { writer_.onParameterSets(sps, pps); }

void PassedFeed::onH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) {
  ++units_;
  clock_.slice(nalu, timestamp);
  const auto picture = joiner_.add(nalu, keyFrame, timestamp);
  if (picture) writer_.onPicture(picture->bytes, picture->key, clock_.timeOfPicture(picture->time), pictureArrival_);
  pictureArrival_ = std::chrono::steady_clock::now();
}

void PassedFeed::onAACHeader(Bytes header) {
  clock_.soundConfig(header);
  writer_.onAudioConfig(header);
}

void PassedFeed::onAACAdts(Bytes data, std::int64_t timestamp) { writer_.onAudio(data, clock_.sound(timestamp)); }

}  // namespace zel::app
