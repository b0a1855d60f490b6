#pragma once

#include <ZELTarkaSDK/CameraStatistics.h>
#include <ZELTarkaSDK/Subscription.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "facade/deadlines.h"

namespace zel {

// Gives a subscription the statistics once every interval, while the subscription is there.
//
// Thread: any thread.
class StatisticsTicker : public std::enable_shared_from_this<StatisticsTicker> {
 public:
  using State = detail::SubscriptionState<CameraStatistics>;
  // Nothing once the camera object has gone.
  using Read = std::function<std::optional<CameraStatistics>()>;

  StatisticsTicker(std::shared_ptr<Deadlines> deadlines, Read read, std::chrono::milliseconds interval,
                   const std::shared_ptr<State>& subscription)
      : deadlines_(std::move(deadlines)),
        read_(std::move(read)),
        interval_(std::chrono::duration<double>(interval).count()),
        subscription_(subscription) {}

  // The first comes after one interval; what a busy host misses is not made up for.
  void wait(double after) {
    deadlines_->add(after + interval_, [weak = weak_from_this(), due = after + interval_] {
      if (const auto self = weak.lock()) self->tick(due);
    });
  }

 private:
  void tick(double due) {
    const auto subscription = subscription_.lock();
    auto now = subscription ? read_() : std::nullopt;
    if (!now) return;
    subscription->push(*now);
    wait(std::max(due, deadlines_->now() - interval_));
  }

  const std::shared_ptr<Deadlines> deadlines_;
  const Read read_;
  const double interval_;
  const std::weak_ptr<State> subscription_;
};

}  // namespace zel
