#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>

namespace zel::platform {

// The times of the pictures that a decoder was given and has not shown, in the order in which they came.
class OwedPictures {
 public:
  void add(std::int64_t time) { times_.push_back(time); }

  // The newest picture failed.
  void dropNewest() {
    if (!times_.empty()) times_.pop_back();
  }

  // True, and the oldest is dropped, where the decoder owes more than it can hold back: one of them was lost.
  bool loseBeyond(std::size_t most) {
    if (times_.size() <= most) return false;
    times_.pop_front();
    return true;
  }

  // The time of a picture that is shown; own: that of its first unit. Reordered pictures are shown at the times at
  // which others came, so that these follow each other evenly.
  std::int64_t take(std::int64_t own, bool reordered) {
    const auto place = reordered ? times_.begin() : std::ranges::find(times_, own);
    if (place == times_.end()) return own;
    const std::int64_t time = *place;
    times_.erase(times_.begin(), place + 1);
    return time;
  }

  void clear() { times_.clear(); }

 private:
  std::deque<std::int64_t> times_;
};

}  // namespace zel::platform
