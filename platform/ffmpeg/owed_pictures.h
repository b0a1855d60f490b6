#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>

namespace zel::platform {

// The timestamps of the pictures that a decoder has received and not returned, in order of arrival.
class OwedPictures {
 public:
  void add(std::int64_t time) { times_.push_back(time); }

  // The newest picture failed.
  void dropNewest() {
    if (!times_.empty()) times_.pop_back();
  }

  // True, and drops the oldest, when there are more than the decoder can hold back: one of them was lost.
  bool loseBeyond(std::size_t most) {
    if (times_.size() <= most) return false;
    times_.pop_front();
    return true;
  }

  // The timestamp of a returned picture; own: that of its first unit. Reordered pictures get the timestamps in order of
  // arrival, so that they are evenly spaced.
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
