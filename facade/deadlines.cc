#include "facade/deadlines.h"

#include <algorithm>
#include <vector>

namespace zel {
namespace {

constexpr double kShortest = 0.001;  // a timer's period is above zero

}  // namespace

Deadlines::Id Deadlines::add(double time, std::function<void()> call) {
  Id id;
  {
    const MutexLock lock(mutex_);
    id = {time, ++added_};
    if (isClosed_) return id;
    calls_.emplace(id, std::move(call));
    // A timer that comes too early finds nothing due and is set again: most calls are removed before their time.
    if (time >= armed_) return id;
    armed_ = time;
  }
  ports_.queues.mainQueue().post([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->arm();
  });
  return id;
}

void Deadlines::remove(Id id) {
  decltype(calls_)::node_type call;  // destroyed without the lock
  const MutexLock lock(mutex_);
  call = calls_.extract(id);
}

void Deadlines::close() {
  decltype(calls_) calls;  // destroyed without the lock, as the timer
  std::unique_ptr<platform::Timer> timer;
  const MutexLock lock(mutex_);
  isClosed_ = true;
  calls.swap(calls_);
  timer.swap(timer_);
}

void Deadlines::arm() {
  std::unique_ptr<platform::Timer> timer;
  double time = kNever;
  {
    const MutexLock lock(mutex_);
    timer.swap(timer_);
    if (!isClosed_ && !calls_.empty()) time = calls_.begin()->first.first;
    armed_ = time;
  }
  timer.reset();
  if (time == kNever) return;
  timer =
      ports_.threads.currentRunLoop().scheduleRepeating(std::max(time - now(), kShortest), [weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->fire();
      });
  const MutexLock lock(mutex_);
  if (!isClosed_) timer.swap(timer_);
}

void Deadlines::fire() {
  std::vector<std::function<void()>> due;
  {
    const MutexLock lock(mutex_);
    const double time = now();
    while (!calls_.empty() && calls_.begin()->first.first <= time) {
      due.push_back(std::move(calls_.begin()->second));
      calls_.erase(calls_.begin());
    }
  }
  for (const auto& call : due) call();
  arm();
}

}  // namespace zel
