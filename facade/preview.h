#pragma once

#include <ZELTarkaSDK/CameraStream.h>
#include <ZELTarkaSDK/LinkStatus.h>
#include <ZELTarkaSDK/PreviewStatistics.h>
#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "facade/decoders_on_demand.h"
#include "facade/hub.h"

class ZELPreviewPlayer;

namespace zel {

class CameraCore;
class StreamRun;

// The camera's one preview, shared by all who look at its pictures and by one stream: it runs while any of them needs
// it, and begins again when the camera has come back.
//
// Thread: any thread.
class Preview final : public ZELPixelBufferDataProtocol, public std::enable_shared_from_this<Preview> {
 public:
  explicit Preview(CameraCore& core) : core_(core) {}

  // A subscription to the pictures.
  std::shared_ptr<detail::SubscriptionState<Picture>> look(const PictureOptions& options);

  // Begins a stream, and ends it. The stream gets its pictures from a preview of its own.
  //
  // Errors: why it cannot begin.
  std::optional<CameraError> begin(const std::shared_ptr<StreamRun>& run);
  void end(const StreamRun& run);

  // Of all that ran and runs, and of the stream that runs.
  std::pair<PreviewStatistics, std::optional<EncodedStreamStatistics>> statistics();

  // Thread: main queue.
  void linkChanged(LinkStatus status);
  // The camera object ends.
  void close(const CameraError& why);

  // Thread: decode thread.
  void onPixelBuffer(const platform::PixelBufferRef& picture, std::int64_t time) override;

 private:
  void lookAway();
  bool beginsNow();
  void startOwn();
  void stopOwn();
  std::optional<CameraError> conflict(std::uint8_t resolution) const;

  CameraCore& core_;  // which owns this one, and closes it before it goes
  Hub<Picture> pictures_;
  std::mutex mutex_;  // held while a run begins or ends, which calls no host
  int lookers_ = 0;
  std::optional<std::uint8_t> resolution_;    // nobody needs the preview: nothing
  std::shared_ptr<ZELPreviewPlayer> player_;  // while there is no stream
  std::shared_ptr<StreamRun> stream_;
  PreviewStatistics past_;                // of those that have ended
  LinkStatus link_ = LinkStatus::closed;  // as last told
  bool isLost_ = false;                   // what is wanted begins, or begins again, with the next first frame
  std::optional<CameraError> closed_;
};

}  // namespace zel
