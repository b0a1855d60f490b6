#pragma once

#include <ZELTarkaSDK/ZELCameraMediaDataDelegate.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELLiveDataSourceProtocol.h>

#include <memory>
#include <optional>
#include <string>

#include "base/mutex.h"
#include "outputs/run_gate.h"
#include "outputs/stream_core.h"
#include "outputs/stream_feed.h"

namespace zel {

class CameraStack;

// The camera's pictures stitched and encoded again, with its sound.
//
// Stands between the player and the live data source as soon as there is sound: it sees every slice come, and so knows
// the pictures' own times, and it keeps the sound that the source drops until its first picture has been encoded. The
// source itself works with the reported times; they come back with its units, and are looked up then.
//
// Owner: the stack must outlive the run.
class StitchedFeed final : public StreamFeed,
                           public ZELLiveDataSourceProtocol,
                           public ZELCameraMediaDataDelegate,
                           public std::enable_shared_from_this<StitchedFeed> {
 public:
  using Bytes = StreamWriter::Bytes;

  StitchedFeed(CameraStack& stack, std::shared_ptr<StreamCore> core, int resolution, StitchedPictures pictures);

  void start() override;
  void stop() override;
  std::optional<std::string> failure() const override;
  FeedFigures figures() const override;

  void sourceOnError(const ZELError& error) override;
  void sourceOnRawPixelBuffer(const platform::PixelBufferRef& picture, std::int64_t timestamp) override;
  void sourceOnH264Header(Bytes sps, Bytes pps) override;
  void sourceOnH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) override;
  void sourceOnAACHeader(Bytes header) override;
  void sourceOnAACData(Bytes, std::int64_t) override {}

  // Thread: session thread.
  void onH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) override;
  void onSps(Bytes, Bytes) override {}
  void onAACHeader(Bytes header) override { source_->onAACHeader(header); }
  void onAACAdts(Bytes data, std::int64_t timestamp) override;

 private:
  const std::shared_ptr<StreamCore> core_;
  const StitchedPictures pictures_;
  const std::shared_ptr<ZELLiveDataSource> source_;
  RunGate gate_;
  mutable Mutex mutex_;
  mutable PreviewStatistics preview_ ZEL_GUARDED_BY(mutex_);  // the last that the player told
};

}  // namespace zel
