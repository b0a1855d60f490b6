#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <span>

#include "base/mutex.h"
#include "gateway/feed/feed_piece.h"

namespace zel::gateway {

// What all viewers of a feed have counted, also those that have gone.
struct ViewerCounts {
  std::atomic<std::uint64_t> bytes = 0;    // read
  std::atomic<std::uint64_t> skipped = 0;  // pictures
};

// One viewer's side of a feed: bytes to read at its own pace. Who reads too slowly loses pictures up to the next key
// picture, and delays nobody.
//
// Thread: any thread; one reader at a time.
class Viewer {
 public:
  // ready: called when there is something to read again after read() has given 0, and at the end. Never inside read(),
  //        and never with a lock of the feed held.
  //
  // Thread: of ready: any thread; it may still run while the viewer is being destroyed, and so must hold what it uses.
  Viewer(FeedForm form, std::size_t mostBytes, std::function<void()> ready, std::shared_ptr<ViewerCounts> counts);
  Viewer(const Viewer&) = delete;
  Viewer& operator=(const Viewer&) = delete;

  // The next bytes of the stream, as many as there are and fit. 0: none now, or none any more.
  std::size_t read(std::span<std::uint8_t> to);
  // Whether everything is read and nothing follows.
  bool isEnded() const;
  // Pictures that this viewer lost.
  std::uint64_t skipped() const;
  FeedForm form() const { return form_; }

  // -- The feed's side. What they return is to be called with no lock held; empty: nothing.

  // The next piece. Of a key picture also what goes with it.
  std::function<void()> put(const FeedPiece& piece);
  std::function<void()> end();

 private:
  enum class State {
    waiting,   // for its first key picture
    flowing,   // gets every piece
    skipping,  // was too slow: waits for the next key picture
    ended,     // nothing follows
  };
  static constexpr std::size_t kRecordHead = 4 + 1 + 1 + 8;  // length, kind, flags, time

  // Of records their kinds; of MP4 what corresponds.
  enum class Kind : std::uint8_t { description = 0, picture = 1, sound = 2 };

  // Some bytes of its own, then shared ones.
  struct Chunk {
    std::array<std::uint8_t, kRecordHead> head{};
    std::size_t headSize = 0;
    ZELData body;
    Kind kind = Kind::picture;

    std::size_t size() const { return headSize + body.size(); }
  };
  static Chunk record(Kind kind, unsigned flags, std::int64_t time, ZELData body);
  void putBeginning(const FeedBeginning& beginning, std::int64_t time) ZEL_REQUIRES(mutex_);
  void putUnit(const FeedPiece& piece, bool resumes) ZEL_REQUIRES(mutex_);
  void add(Chunk chunk) ZEL_REQUIRES(mutex_);
  void skip() ZEL_REQUIRES(mutex_);
  void countSkipped() ZEL_REQUIRES(mutex_);
  std::function<void()> wake() ZEL_REQUIRES(mutex_);

  const FeedForm form_;
  const std::size_t mostBytes_;
  const std::function<void()> ready_;
  const std::shared_ptr<ViewerCounts> counts_;
  mutable Mutex mutex_;
  State state_ ZEL_GUARDED_BY(mutex_) = State::waiting;
  std::deque<Chunk> chunks_ ZEL_GUARDED_BY(mutex_);
  std::size_t at_ ZEL_GUARDED_BY(mutex_) = 0;       // bytes of the first chunk that were read
  std::size_t backlog_ ZEL_GUARDED_BY(mutex_) = 0;  // what all chunks cost
  bool isStarved_ ZEL_GUARDED_BY(mutex_) = false;   // read() gave 0 and `ready` has not been called since
  std::uint64_t beginning_ ZEL_GUARDED_BY(mutex_) = 0;
  std::uint64_t skipped_ ZEL_GUARDED_BY(mutex_) = 0;
};

}  // namespace zel::gateway
