#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

#include <ZELTarkaSDK/MediaPacket.h>

namespace zel {

// How much may wait for an output.
struct QueueLimits {
  std::size_t bytes = std::size_t{32} << 20;
  std::int64_t microseconds = 10'000'000;
};

// The packets that wait for one output, from a key picture on. What is too much costs the oldest, up to the next key
// picture, so that what is left can be decoded.
class PacketQueue {
 public:
  explicit PacketQueue(QueueLimits limits = {}) : limits_(limits) {}

  // Returns whether packets that had been taken were dropped for it, or it was itself, for want of memory.
  bool put(MediaPacket packet);

  // The oldest. Nothing when there is none.
  std::optional<MediaPacket> take();

  // Forgets what waits, and takes the next key picture first.
  void restart();

  bool empty() const { return packets_.empty(); }
  // Packets that were not taken, or forgotten.
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
