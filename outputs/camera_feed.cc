#include "outputs/camera_feed.h"

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <ZELTarkaSDK/platform/application_events.h>
#include <ZELTarkaSDK/platform/ports.h>

#include <utility>

#include "base/has_memory_for.h"

namespace zel {
CameraFeed::CameraFeed(CameraStack& stack, std::shared_ptr<StreamCore> core, int resolution)
    : stack_(stack), core_(std::move(core)), resolution_(resolution) {}

void CameraFeed::start() {
  auto& notifications = stack_.ports().notifications;
  background_ = notifications.observe(platform::kApplicationDidEnterBackgroundNotification,
                                      [this](const platform::Notification&) { switchOff(); });
  active_ = notifications.observe(platform::kApplicationDidBecomeActiveNotification,
                                  [this](const platform::Notification&) { switchOn(); });
  player_ = stack_.suitablePreviewPlayer();
  player_->setFps(picturesPerSecond(resolution_));
  player_->setMediaDataDelegate(weak_from_this());
  if (core_->wantsPictures()) player_->setPixelBufferDelegate(weak_from_this());
  switchOn();
}

void CameraFeed::stop() {
  background_.reset();
  active_.reset();
  if (player_) {  // none where the start found no memory
    player_->setMediaDataDelegate({});
    player_->setPixelBufferDelegate({});
  }
  gate_.close();
  ifMemoryAllows([this] { switchOff(); });
}

void CameraFeed::switchOn() {
  ZELCameraUCD& ucd = stack_.ucd();
  const auto preview = failureOf("failed to open camera video stream");
  ucd.msgCmdStartVideoWithVideoRes(static_cast<std::uint8_t>(resolution_),
                                   [preview](const auto& error, const auto&) { preview(error); });
  ucd.msgReqSwitchAudioStreamType(kAudioStreamOn, failureOf("failed to switch audio"));
}

void CameraFeed::switchOff() {
  stack_.ucd().msgCmdStopVPWithRebackBlock([](const auto&) {});
  stack_.ucd().msgReqSwitchAudioStreamType(kAudioStreamOff, [](const auto&) {});
}

std::function<void(const std::optional<ZELError>&)> CameraFeed::failureOf(std::string what) {
  return [weak = weak_from_this(), what = std::move(what)](const std::optional<ZELError>& error) {
    const auto self = weak.lock();
    if (self && error) self->gate_.enter([&] { self->core_->fail(what); });
  };
}

FeedFigures CameraFeed::figures() const {
  FeedFigures figures;
  figures.preview.units = units_.load();
  return figures;
}

void CameraFeed::onSps(Bytes sps, Bytes pps) {
  gate_.enter([&] { core_->writer.onParameterSets(sps, pps); });
}

void CameraFeed::onH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) {
  ++units_;
  gate_.enter([&] {
    core_->clock.slice(nalu, timestamp);
    const auto whole = joiner_.add(nalu, keyFrame, timestamp);
    if (!whole) return;
    const MediaClock::Picture picture = core_->clock.pictureOf(whole->time);
    core_->writer.onPicture(whole->bytes, whole->key, picture.time, picture.arrival);
  });
}

void CameraFeed::onAACHeader(Bytes header) {
  gate_.enter([&] {
    core_->clock.soundConfig(header);
    core_->writer.onAudioConfig(header);
  });
}

void CameraFeed::onPixelBuffer(const platform::PixelBufferRef& picture, std::int64_t timestamp) {
  gate_.enter([&] { core_->picture(picture, timestamp); });
}

void CameraFeed::onAACAdts(Bytes data, std::int64_t timestamp) {
  gate_.enter([&] { core_->writer.onAudio(data, core_->clock.sound(timestamp)); });
}

}  // namespace zel
