#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <span>

#include "base/wire.h"
#include "gateway/line/shared_bytes.h"

namespace zel::gateway {

// What waits to be written to one host. Media can be dropped again while it waits; everything else is written.
class HostQueue {
 public:
  // Bounds of what waits, in bytes with kPerEntry for each entry. Sixteen seconds of 8 Mbit/s, four of 30 Mbit/s; the
  // largest photo besides.
  static constexpr std::size_t kMostMedia = 16u * 1024 * 1024;
  static constexpr std::size_t kMostOther = kMaxFrameLength;
  static constexpr std::size_t kPerEntry = 64;

  void add(SharedBytes bytes) { push(std::move(bytes), false); }
  void addMedia(SharedBytes frame) { push(std::move(frame), true); }

  bool empty() const { return entries_.empty(); }
  bool holdsTooMuchMedia() const { return media_ > kMostMedia; }
  // The host reads too slowly even for what must not be dropped.
  bool overflows() const { return other_ > kMostOther; }

  // Drops the media that wait, save a frame of which a part has been written.
  void dropMedia();

  // The bytes to be written next, as many pieces as the span holds. Returns how many there are.
  std::size_t front(std::span<ByteView> pieces) const;
  // So many of them have been written.
  void written(std::size_t count);

 private:
  struct Entry {
    SharedBytes bytes;
    bool isMedia;
  };

  void push(SharedBytes bytes, bool isMedia);
  std::size_t& sumOf(const Entry& entry) { return entry.isMedia ? media_ : other_; }

  std::deque<Entry> entries_;
  std::size_t begun_ = 0;  // bytes of the first entry that have been written
  std::size_t media_ = 0, other_ = 0;
};

}  // namespace zel::gateway
