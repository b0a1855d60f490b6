#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

#include <ZELTarkaSDK/MediaPacket.h>

namespace zel {

// The limits of an output's queue.
struct QueueLimits {
  std::size_t bytes = std::size_t{32} << 20;
  std::int64_t microseconds = 10'000'000;
};

// The packets queued for one output, starting with a keyframe. When it is full, the oldest packets up to the next
// keyframe are dropped, so that the rest can be decoded.
class PacketQueue {
 public:
  explicit PacketQueue(QueueLimits limits = {}) : limits_(limits) {}

  // Returns whether packets that had been taken were dropped for it, or it was itself, for want of memory.
  bool put(MediaPacket packet);

  // The oldest packet; nothing when empty.
  std::optional<MediaPacket> take();

  // Drops all packets, and continues with the next keyframe.
  void restart();

  bool empty() const { return packets_.empty(); }
  // Packets that were refused or dropped.
  std::uint64_t dropped() const { return dropped_; }

 private:
  bool isTooMuch() const;
  void dropFirst();
  void dropUpToKey();

  const QueueLimits limits_;
  std::deque<MediaPacket> packets_;
  std::size_t bytes_ = 0;
  bool waitsForKey_ = true;
  std::uint64_t dropped_ = 0;
};

}  // namespace zel
