#pragma once

#include <ZELTarkaSDK/Subscription.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/has_memory_for.h"
#include "base/mutex.h"

namespace zel {

// Hands one thing to all who have subscribed to it.
//
// Thread: any thread.
template <class T>
class Hub {
 public:
  using State = std::shared_ptr<detail::SubscriptionState<T>>;

  void add(const State& subscription) {
    std::optional<CameraError> end;
    {
      const MutexLock lock(mutex_);
      std::erase_if(subscriptions_, [](const auto& one) { return one.expired(); });
      subscriptions_.push_back(subscription);
      end = end_;
    }
    if (end) subscription->end(*end);
  }

  // What finds no memory is lost to that subscription.
  void publish(const T& item) {
    ifMemoryAllows([&] {
      for (const State& one : subscriptions()) one->push(item);
    });
  }

  // For those who are there.
  void endThese(const CameraError& why) {
    for (const State& one : subscriptions()) one->end(why);
  }

  // For all, and whoever is added from now on.
  void end(const CameraError& why) {
    {
      const MutexLock lock(mutex_);
      end_ = why;
    }
    endThese(why);
  }

 private:
  std::vector<State> subscriptions() {
    std::vector<State> alive;
    const MutexLock lock(mutex_);
    for (const auto& one : subscriptions_) {
      if (auto state = one.lock()) alive.push_back(std::move(state));
    }
    return alive;
  }

  Mutex mutex_;
  std::vector<std::weak_ptr<detail::SubscriptionState<T>>> subscriptions_ ZEL_GUARDED_BY(mutex_);
  std::optional<CameraError> end_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel
