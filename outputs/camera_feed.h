#pragma once

#include <ZELTarkaSDK/ZELCameraMediaDataDelegate.h>
#include <ZELTarkaSDK/ZELError.h>
#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>
#include <ZELTarkaSDK/platform/notification_center.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "outputs/picture_joiner.h"
#include "outputs/run_gate.h"
#include "outputs/stream_core.h"
#include "outputs/stream_feed.h"

class ZELPreviewPlayer;

namespace zel {

class CameraStack;

// The camera's own H.264 and sound, as they are: nothing is decoded for them.
//
// Owner: the stack must outlive the run.
class CameraFeed final : public StreamFeed,
                         public ZELCameraMediaDataDelegate,
                         public ZELPixelBufferDataProtocol,
                         public std::enable_shared_from_this<CameraFeed> {
 public:
  CameraFeed(CameraStack& stack, std::shared_ptr<StreamCore> core, int resolution);

  void start() override;
  void stop() override;
  FeedFigures figures() const override;

  // Thread: session thread.
  void onSps(Bytes sps, Bytes pps) override;
  void onH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) override;
  void onAACHeader(Bytes header) override;
  void onAACAdts(Bytes data, std::int64_t timestamp) override;
  // Thread: decode thread.
  void onPixelBuffer(const platform::PixelBufferRef& picture, std::int64_t timestamp) override;

 private:
  void switchOn();
  void switchOff();
  std::function<void(const std::optional<ZELError>&)> failureOf(std::string what);

  CameraStack& stack_;
  const std::shared_ptr<StreamCore> core_;
  const int resolution_;
  RunGate gate_;
  PictureJoiner joiner_;  // session thread only
  std::atomic<std::uint64_t> units_ = 0;
  std::shared_ptr<ZELPreviewPlayer> player_;
  std::unique_ptr<platform::NotificationObservation> background_, active_;
};

}  // namespace zel
