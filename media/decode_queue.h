#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <utility>

#include "media/media_buffer.h"
#include "media/media_pixel_buffer.h"
#include "media/nal_unit.h"

namespace zel {

// NAL units queued for decoding. From 16 on the oldest is dropped, so that a stall adds little delay. A key unit at the
// head stays, because the units behind it depend on it.
class DecodeQueue {
 public:
  using Unit = std::shared_ptr<orq::MediaBuffer>;

  static constexpr std::size_t kFull = 16;
  // The units behind a key unit reach this size only when nothing is decoded for many seconds; then the key unit is
  // dropped too. A camera may send millions of a few bytes, of which each takes many times as much.
  static constexpr std::size_t kMostBytes = std::size_t{64} << 20;
  static constexpr std::size_t kMostUnits = 100'000;

  // Returns how many were dropped.
  std::size_t append(Unit unit) {
    const std::size_t before = units_.size() + 1;
    units_.push_back(std::move(unit));
    bytes_ += sizeOf(units_.back());
    if (units_.size() >= kFull && !isIdr(bytesOf(units_.front()))) dropOldest();
    while ((bytes_ > kMostBytes || units_.size() > kMostUnits) && units_.size() > 1) dropOldest();
    return before - units_.size();
  }

  // The oldest unit, null when there is none.
  Unit take() {
    if (units_.empty()) return nullptr;
    Unit oldest = std::move(units_.front());
    units_.pop_front();
    bytes_ -= sizeOf(oldest);
    return oldest;
  }

  std::size_t size() const { return units_.size(); }
  bool empty() const { return units_.empty(); }

 private:
  static std::size_t sizeOf(const Unit& unit) { return static_cast<std::size_t>(unit->size()); }
  static ByteView bytesOf(const Unit& unit) { return {unit->data(), sizeOf(unit)}; }
  void dropOldest() { take(); }

  std::deque<Unit> units_;
  std::size_t bytes_ = 0;
};

// Pictures for polling: the latest five.
class PictureQueue {
 public:
  using Picture = std::shared_ptr<orq::MediaPixelBuffer>;

  static constexpr std::size_t kMost = 5;

  void append(Picture picture) {
    pictures_.push_back(std::move(picture));
    if (pictures_.size() > kMost) pictures_.pop_front();
  }

  // The oldest picture, null when there is none.
  Picture take() {
    if (pictures_.empty()) return nullptr;
    Picture oldest = std::move(pictures_.front());
    pictures_.pop_front();
    return oldest;
  }

  std::size_t size() const { return pictures_.size(); }

 private:
  std::deque<Picture> pictures_;
};

}  // namespace zel
