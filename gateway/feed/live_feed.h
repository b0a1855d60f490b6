#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <ZELTarkaSDK/EncodedStreamReceiver.h>

#include "base/mutex.h"
#include "gateway/feed/arrival_epoch.h"
#include "gateway/feed/feed_times.h"
#include "gateway/feed/mp4_fragments.h"
#include "gateway/feed/stream_description.h"
#include "gateway/feed/viewer.h"

namespace zel::gateway {

// What a feed has done so far.
struct FeedStatistics {
  std::size_t mp4Viewers = 0, unitsViewers = 0;  // now
  std::uint64_t pictures = 0, audioFrames = 0;   // that came to it
  std::uint64_t bytes = 0;                       // read by viewers
  std::uint64_t skipped = 0;                     // pictures that viewers lost, all of them together
};

// One camera's encoded stream for any number of viewers, each at its own pace. Each picture's bytes are made once for
// each form that somebody looks in, and are shared. Whoever joins gets everything since the last key picture at once.
//
//   zel::gateway::LiveFeed feed({.rate = 30});
//   feed.onHeaders(stream.headers());
//   packets.each([&](const zel::MediaPacket& packet) { feed.onPacket(packet); });
//   const auto viewer = feed.join(zel::gateway::FeedForm::mp4, [] { ... });
//
// It outlives the streams that it is fed with: onHeaders() again begins another one, whose times go on behind the one
// before.
//
// Thread: any thread; headers and packets one at a time.
class LiveFeed final : public EncodedStreamReceiver {
 public:
  struct Options {
    double rate = 30;  // pictures a second, nominally
    // What is kept for those who join; of a group of pictures that is longer nothing is, and they wait for the next.
    std::size_t mostGroupBytes = std::size_t{16} << 20;
    // What a viewer may be behind; at least what it gets at once.
    std::size_t mostViewerBytes = std::size_t{24} << 20;
    // The host's time of a moment, in microseconds since 1970. Empty: the system's clock.
    std::function<std::int64_t(std::chrono::steady_clock::time_point)> unixTime = {};
  };

  explicit LiveFeed(Options options);
  // Ends.
  ~LiveFeed() override;

  void onHeaders(const StreamHeaders& headers) override;
  void onPacket(const MediaPacket& packet) override;

  // Nothing follows any more, for nobody; what viewers have not read they can still read.
  void end();

  // A viewer, which gets everything since the last key picture at once.
  //
  // Owner:  the caller; it is forgotten with its last reference.
  // Thread: any thread.
  std::shared_ptr<Viewer> join(FeedForm form, std::function<void()> ready);

  // Thread: any thread.
  FeedStatistics statistics() const;

 private:
  using Calls = std::vector<std::function<void()>>;

  std::optional<FeedPiece> pieceOf(const MediaPacket& packet) ZEL_REQUIRES(mutex_);
  bool beginGroup(MediaPacket& packet) ZEL_REQUIRES(mutex_);
  void renewBeginning(const StreamDescription& description) ZEL_REQUIRES(mutex_);
  void noteArrival(const MediaPacket& packet) ZEL_REQUIRES(mutex_);
  void keep(const FeedPiece& piece) ZEL_REQUIRES(mutex_);
  void handOut(FeedPiece& piece, Calls& calls) ZEL_REQUIRES(mutex_);
  void makeFragment(FeedPiece& piece) ZEL_REQUIRES(mutex_);
  std::vector<std::shared_ptr<Viewer>> viewers() const ZEL_REQUIRES(mutex_);

  const Options options_;
  const std::shared_ptr<ViewerCounts> counts_ = std::make_shared<ViewerCounts>();
  mutable Mutex mutex_;
  std::optional<StreamHeaders> headers_ ZEL_GUARDED_BY(mutex_);          // of the stream that feeds it
  std::optional<StreamDescription> description_ ZEL_GUARDED_BY(mutex_);  // from the last key picture on
  std::optional<StreamDescription> shown_ ZEL_GUARDED_BY(mutex_);        // the newest one that viewers got
  std::shared_ptr<const FeedBeginning> beginning_ ZEL_GUARDED_BY(mutex_);
  FeedTimes times_ ZEL_GUARDED_BY(mutex_);
  ArrivalEpoch epoch_ ZEL_GUARDED_BY(mutex_);
  bool isAnotherEpoch_ ZEL_GUARDED_BY(mutex_) = true;
  Mp4Fragments fragments_ ZEL_GUARDED_BY(mutex_);
  std::vector<FeedPiece> group_ ZEL_GUARDED_BY(mutex_);  // since the last key picture; empty where it was too long
  std::size_t groupBytes_ ZEL_GUARDED_BY(mutex_) = 0;
  std::vector<std::weak_ptr<Viewer>> viewers_ ZEL_GUARDED_BY(mutex_);
  FeedStatistics statistics_ ZEL_GUARDED_BY(mutex_);
  bool isEnded_ ZEL_GUARDED_BY(mutex_) = false;
};

}  // namespace zel::gateway
