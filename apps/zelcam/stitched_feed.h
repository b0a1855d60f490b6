#pragma once

#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELLiveDataSourceProtocol.h>

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "apps/zelcam/arrival_clock.h"
#include "apps/zelcam/camera_link.h"
#include "apps/zelcam/live_feed.h"
#include "apps/zelcam/live_options.h"
#include "apps/zelcam/muxing/stream_writer.h"
#include "platform/mutex.h"

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
  void sourceOnRawPixelBuffer(const platform::PixelBufferRef& picture, std::int64_t timestamp) override;
  void sourceOnH264Header(Bytes sps, Bytes pps) override;
  void sourceOnH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) override;
  void sourceOnAACHeader(Bytes header) override;
  void sourceOnAACData(Bytes data, std::int64_t timestamp) override;

 private:
  StreamWriter::TimePoint arrivalOf(std::int64_t timestamp);

  CameraLink& link_;
  StreamWriter& writer_;
  const LiveOptions& options_;
  const ArrivalClock& clock_;
  const std::int64_t lag_;
  std::shared_ptr<ZELLiveDataSource> source_;
  std::optional<std::string> failure_;  // main thread only
  FeedFigures atEnd_;                   // likewise

  Mutex arrivalsMutex_;
  std::deque<std::pair<std::int64_t, StreamWriter::TimePoint>> arrivals_ ZEL_GUARDED_BY(arrivalsMutex_);
};

}  // namespace zel::app
