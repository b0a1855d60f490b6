#pragma once

#include <ZELTarkaSDK/ZELCameraMediaDataDelegate.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELLiveDataSourceProtocol.h>

#include <memory>
#include <optional>
#include <string>

#include "apps/zelcam/arrival_clock.h"
#include "apps/zelcam/camera_link.h"
#include "apps/zelcam/live_feed.h"
#include "apps/zelcam/live_options.h"
#include "apps/zelcam/media_clock.h"
#include "apps/zelcam/muxing/stream_writer.h"

namespace zel::app {

// The camera's pictures, stitched and encoded, with its sound.
//
// Once there is sound, it stands between the player and the source. It sees every slice, and so knows the pictures'
// true times. It keeps the sound that the source drops before its first encoded picture.
// Owner:  the arguments must outlive the object.
class StitchedFeed final : public LiveFeed,
                           public ZELLiveDataSourceProtocol,
                           public ZELCameraMediaDataDelegate,
                           public std::enable_shared_from_this<StitchedFeed> {
 public:
  using Bytes = StreamWriter::Bytes;

  StitchedFeed(CameraLink& link, StreamWriter& writer, MediaClock& clock, const LiveOptions& options,
               const ArrivalClock& arrivals);

  void start() override;
  void stop() override;
  std::optional<std::string> failure() const override;
  FeedFigures figures() const override;

  void sourceOnError(const ZELError& error) override;
  void sourceOnH264Header(Bytes sps, Bytes pps) override;
  void sourceOnH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) override;
  void sourceOnAACHeader(Bytes header) override;
  void sourceOnAACData(Bytes, std::int64_t) override {}

  // Thread: session thread.
  void onH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) override;
  void onSps(Bytes sps, Bytes pps) override;
  void onAACHeader(Bytes header) override;
  void onAACAdts(Bytes data, std::int64_t timestamp) override;

 private:
  CameraLink& link_;
  StreamWriter& writer_;
  MediaClock& clock_;
  const LiveOptions& options_;
  const ArrivalClock& arrivals_;
  std::shared_ptr<ZELLiveDataSource> source_;
  std::optional<std::string> failure_;  // main thread only
  FeedFigures atEnd_;                   // main thread only
};

}  // namespace zel::app
