#pragma once

#include <ZELTarkaSDK/Subscription.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/has_memory_for.h"
#include "base/mutex.h"

namespace zel {

// Gives a subscription each thing.
template <class T>
struct GiveEach {
  void operator()(detail::SubscriptionState<T>& subscription, const T& item) { subscription.push(item); }
};

// Hands one thing to all who have subscribed to it. Give: what becomes of a thing at one subscription, which may know
// what became of those before.
//
// Thread: any thread; where Give has a state, things are published by one at a time.
template <class T, class Give = GiveEach<T>>
class Hub {
 public:
  using State = std::shared_ptr<detail::SubscriptionState<T>>;

  void add(const State& subscription) {
    std::optional<CameraError> end;
    {
      const MutexLock lock(mutex_);
      std::erase_if(takers_, [](const auto& one) { return one->subscription.expired(); });
      takers_.push_back(std::make_shared<Taker>(Taker{subscription}));
      end = end_;
    }
    if (end) subscription->end(*end);
  }

  // What finds no memory is lost to that subscription.
  void publish(const T& item) {
    ifMemoryAllows([&] {
      for (const auto& one : takers())
        if (const State state = one->subscription.lock()) one->give(*state, item);
    });
  }

  // For those who are there.
  void endThese(const CameraError& why) {
    for (const auto& one : takers())
      if (const State state = one->subscription.lock()) state->end(why);
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
  struct Taker {
    std::weak_ptr<detail::SubscriptionState<T>> subscription;
    Give give = {};
  };

  std::vector<std::shared_ptr<Taker>> takers() {
    const MutexLock lock(mutex_);
    return takers_;
  }

  Mutex mutex_;
  std::vector<std::shared_ptr<Taker>> takers_ ZEL_GUARDED_BY(mutex_);
  std::optional<CameraError> end_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel
