#pragma once

#include <algorithm>
#include <cstdint>

namespace zel::gateway {

// The moment at which the picture of time 0 would have arrived, from the pictures that did: the mean of many, since one
// arrival alone is as uncertain as the link.
//
// Units:  microseconds since 1970.
// Thread: one at a time.
class ArrivalEpoch {
 public:
  // Another connection: what is known of the one before does not hold.
  void restart() { weight_ = 0; }

  void note(std::int64_t arrival, std::int64_t time) {
    weight_ = std::min(weight_ + 1, kMost);
    epoch_ = weight_ == 1 ? arrival - time : epoch_ + (arrival - time - epoch_) / weight_;
  }

  std::int64_t epoch() const { return epoch_; }

 private:
  static constexpr std::int64_t kMost = 32;  // pictures, about a second

  std::int64_t weight_ = 0, epoch_ = 0;
};

}  // namespace zel::gateway
