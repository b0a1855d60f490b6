#pragma once

#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELLiveDataSourceProtocol.h>

#include <memory>
#include <optional>
#include <string>

#include "apps/zelcam/arrival_clock.h"
#include "apps/zelcam/camera_link.h"
#include "apps/zelcam/live_feed.h"
#include "apps/zelcam/live_options.h"
#include "apps/zelcam/muxing/stream_writer.h"

namespace zel::app {

// The camera's pictures stitched and encoded anew, with its sound.
// Owner: the arguments must outlive the object.
class StitchedFeed final : public LiveFeed,
                           public ZELLiveDataSourceProtocol,
                           public std::enable_shared_from_this<StitchedFeed> {
 public:
  StitchedFeed(CameraLink& link, StreamWriter& writer, const LiveOptions& options, const ArrivalClock& arrivals);

  void start() override;
  void stop() override;
  std::optional<std::string> failure() const override;
  FeedFigures figures() const override;

  void sourceOnError(const ZELError& error) override;
  void sourceOnH264Header(Bytes sps, Bytes pps) override;
  void sourceOnH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) override;
  void sourceOnAACHeader(Bytes header) override;
  void sourceOnAACData(Bytes data, std::int64_t timestamp) override;

 private:
  CameraLink& link_;
  StreamWriter& writer_;
  const LiveOptions& options_;
  const ArrivalClock& arrivals_;
  const std::int64_t lag_;
  std::shared_ptr<ZELLiveDataSource> source_;
  std::optional<std::string> failure_;  // main thread only
  FeedFigures atEnd_;                   // likewise
};

}  // namespace zel::app
