#pragma once

#include <ZELTarkaSDK/CameraStream.h>
#include <ZELTarkaSDK/LinkStatus.h>
#include <ZELTarkaSDK/Outputs.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "facade/hub.h"
#include "facade/packet_hub.h"

namespace zel {

class CameraCore;
class CameraStack;

// A stream of a camera object, from its first start to its stop: the encoded stream, and all who get it.
//
// Thread: any thread.
class StreamRun final : public EncodedStreamReceiver, public std::enable_shared_from_this<StreamRun> {
 public:
  // A stream at once.
  static Result<CameraStream> begin(const std::shared_ptr<CameraCore>& core, const StreamOptions& options);
  // Gives the stream once its first picture has come.
  static Pending<CameraStream> start(const std::shared_ptr<CameraCore>& core, const StreamOptions& options,
                                     const RequestOptions& request);

  StreamRun(const std::shared_ptr<CameraCore>& core, StreamOptions options);
  ~StreamRun() override;

  const StreamOptions& options() const { return options_; }

  // One run of the encoded stream, which begins anew with each connection. Called by the preview, one at a time.
  void startRun(CameraStack& stack);
  void stopRun();
  void lost();

  // Ends it for all who get it; the outputs finish in finish().
  void endFor(const CameraError& why);
  void stop();

  void onHeaders(const StreamHeaders& headers) override;
  void onPacket(const MediaPacket& packet) override;

  // Why it has ended; nothing while it runs.
  std::optional<CameraError> end() const;

  // What CameraStream offers.
  StreamHeaders headers() const;
  std::shared_ptr<detail::SubscriptionState<MediaPacket>> packets(const SubscriptionOptions& options);
  std::shared_ptr<detail::SubscriptionState<StreamProblem>> problems(const SubscriptionOptions& options);
  EncodedStreamStatistics statistics() const { return stream_.statistics(); }
  std::optional<std::string> failure() const { return stream_.failure(); }
  Result<int> addOutput(const std::string& address);
  std::optional<std::int64_t> timeOf(std::int64_t reportedTime) const { return stream_.timeOf(reportedTime); }
  Outputs& outputs() { return outputs_; }

 private:
  // With its outputs.
  static Result<std::shared_ptr<StreamRun>> create(const std::shared_ptr<CameraCore>& core,
                                                   const StreamOptions& options);
  void changed();
  void tellFailure();
  void failStart(const CameraError& why);
  CameraError whyNothingCame() const;
  std::shared_ptr<detail::PendingState<CameraStream>> takeStarting();
  void postToMain(std::function<void()> call);
  template <class T>
  std::shared_ptr<detail::SubscriptionState<T>> subscription(const SubscriptionOptions& options);

  const std::weak_ptr<CameraCore> core_;
  const StreamOptions options_;
  Outputs outputs_;
  EncodedStream stream_;
  PacketHub packets_;
  Hub<StreamProblem> problems_;
  std::atomic<bool> isStarting_ = true;  // until the first packet
  mutable std::mutex mutex_;
  StreamHeaders headers_;
  std::shared_ptr<detail::PendingState<CameraStream>> starting_;
  std::shared_ptr<void> startWatch_;
  std::optional<CameraError> end_;
};

}  // namespace zel
