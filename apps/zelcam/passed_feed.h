#pragma once

#include <ZELTarkaSDK/ZELCameraMediaDataDelegate.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include <ZELTarkaSDK/platform/notification_center.h>
#include "apps/zelcam/camera_link.h"
#include "apps/zelcam/live_feed.h"
#include "apps/zelcam/media_clock.h"
#include "apps/zelcam/muxing/picture_joiner.h"
#include "apps/zelcam/muxing/stream_writer.h"

class ZELPreviewPlayer;

namespace zel::app {

// Pass-through of the camera's own H.264 and sound: nothing is decoded.
// Owner:  the arguments must outlive the object.
class PassedFeed final : public LiveFeed,
                         public ZELCameraMediaDataDelegate,
                         public std::enable_shared_from_this<PassedFeed> {
 public:
  PassedFeed(CameraLink& link, StreamWriter& writer, MediaClock& clock, int resolution);

  void start() override;
  void stop() override;
  std::optional<std::string> failure() const override { return failure_; }
  FeedFigures figures() const override;

  // Thread: session thread.
  void onSps(Bytes sps, Bytes pps) override;
  void onH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) override;
  void onAACHeader(Bytes header) override;
  void onAACAdts(Bytes data, std::int64_t timestamp) override;

 private:
  void switchOn();
  void switchOff();
  std::function<void(const std::optional<ZELError>&)> failureOf(std::string what);

  CameraLink& link_;
  StreamWriter& writer_;
  MediaClock& clock_;
  const int resolution_;
  std::optional<std::string> failure_;  // main thread only
  PictureJoiner joiner_;                // session thread only
  StreamWriter::TimePoint pictureArrival_{};
  std::atomic<std::uint64_t> units_ = 0;
  std::shared_ptr<ZELPreviewPlayer> player_;
  std::unique_ptr<platform::NotificationObservation> background_, active_;
};

}  // namespace zel::app
