#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include <ZELTarkaSDK/Pending.h>
#include <ZELTarkaSDK/platform/call_gate.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// How much a subscription keeps for a host that does not keep up.
struct SubscriptionOptions {
  enum class Drop { oldest, newest };

  std::size_t capacity = 16;  // 0 counts as 1
  Drop drop = Drop::oldest;   // where it is full
};

namespace detail {

// Ends waits in time.
class ZEL_EXPORT Patience {
 public:
  virtual ~Patience() = default;
  // Calls giveUp once, when the time limit is over or the stop is requested, until what it returns is destroyed.
  // A time limit of zero is none. giveUp: called on any thread, and never inside this call.
  virtual std::shared_ptr<void> watch(const RequestOptions& options, std::function<void(CameraError)> giveUp) = 0;
};

// What a subscription and its source share.
//
// Thread: any thread.
template <class T>
class SubscriptionState final : public std::enable_shared_from_this<SubscriptionState<T>> {
 public:
  SubscriptionState(const SubscriptionOptions& options, std::shared_ptr<const Callbacks> callbacks,
                    std::shared_ptr<Patience> patience)
      : options_(options), callbacks_(std::move(callbacks)), patience_(std::move(patience)) {}

  // What the end of the subscription does at its source. Set before it is handed out.
  void setRelease(std::function<void()> release) { release_ = std::move(release); }

  // What a full subscription loses: one thing, or what it kept as well, where each needs the one before.
  enum class Loss { one, row };

  // The next one, from its source. False where it was lost.
  bool push(T item, Loss loss = Loss::one) {
    std::unique_lock lock(mutex_);
    if (end_) return false;
    if (!waiting_.empty()) {
      const auto first = std::move(waiting_.front());
      waiting_.pop_front();
      lock.unlock();
      first.pending->set(std::move(item));
      return true;
    }
    if (items_.size() >= std::max<std::size_t>(options_.capacity, 1) && !makeRoom(loss)) return false;
    items_.push_back(std::move(item));
    schedule(lock);
    return true;
  }

  // One was lost at its source.
  void countLost() {
    const std::lock_guard lock(mutex_);
    ++dropped_;
  }

  // Nothing follows any more; what is kept can still be taken.
  void end(const CameraError& why) {
    std::deque<Waiting> waiting;
    {
      const std::lock_guard lock(mutex_);
      if (!end_) end_ = why;
      waiting.swap(waiting_);
    }
    for (const Waiting& one : waiting) one.pending->set(why);
  }

  Pending<T> next(const RequestOptions& options) {
    const auto pending = std::make_shared<PendingState<T>>(callbacks_);
    const auto giveUp = [weak = this->weak_from_this(), waiting = std::weak_ptr(pending)](const CameraError& why) {
      const auto given = waiting.lock();
      if (!given) return;
      if (const auto self = weak.lock()) self->forget(given);
      given->set(why);
    };
    pending->setCancel([giveUp] { giveUp({CameraError::Reason::cancelled, "the wait was cancelled"}); });
    std::unique_lock lock(mutex_);
    if (!items_.empty()) {
      pending->set(std::move(items_.front()));
      items_.pop_front();
    } else if (end_) {
      pending->set(*end_);
    } else {
      waiting_.push_back({pending, patience_->watch(options, giveUp)});
    }
    return Pending<T>(pending);
  }

  void each(std::function<void(const T&)> callback) {
    std::unique_lock lock(mutex_);
    callback_ = std::make_shared<std::function<void(const T&)>>(std::move(callback));
    schedule(lock);
  }

  std::uint64_t dropped() const {
    const std::lock_guard lock(mutex_);
    return dropped_;
  }

  // The subscription's own end.
  void close() {
    end({CameraError::Reason::closed, "the subscription has ended"});
    gate_.close();
    if (const auto release = std::exchange(release_, nullptr)) release();
  }

 private:
  struct Waiting {
    std::shared_ptr<PendingState<T>> pending;
    std::shared_ptr<void> watch;
  };

  // False where the new one is lost.
  bool makeRoom(Loss loss) {
    ++dropped_;
    if (options_.drop == SubscriptionOptions::Drop::newest) return false;
    if (loss == Loss::one) {
      items_.pop_front();
      return true;
    }
    dropped_ += items_.size();
    items_.clear();
    return false;
  }

  void schedule(std::unique_lock<std::mutex>& lock) {
    if (!callback_ || isScheduled_ || items_.empty()) return;
    isScheduled_ = true;
    lock.unlock();
    callbacks_->post([self = this->shared_from_this()] { self->deliver(); });
  }

  void deliver() {
    while (const auto item = take()) gate_.enter([&] { (*callback_)(*item); });
  }

  std::optional<T> take() {
    const std::lock_guard lock(mutex_);
    isScheduled_ = !items_.empty();
    if (items_.empty()) return std::nullopt;
    std::optional<T> item(std::move(items_.front()));
    items_.pop_front();
    return item;
  }

  void forget(const std::shared_ptr<PendingState<T>>& pending) {
    Waiting found;  // destroyed without the lock
    const std::lock_guard lock(mutex_);
    for (auto one = waiting_.begin(); one != waiting_.end(); ++one) {
      if (one->pending != pending) continue;
      found = std::move(*one);
      waiting_.erase(one);
      return;
    }
  }

  const SubscriptionOptions options_;
  const std::shared_ptr<const Callbacks> callbacks_;
  const std::shared_ptr<Patience> patience_;
  std::function<void()> release_;
  CallGate gate_;  // never busy when it is entered: what is delivered is delivered by one thread
  mutable std::mutex mutex_;
  std::deque<T> items_;
  std::deque<Waiting> waiting_;
  std::shared_ptr<std::function<void(const T&)>> callback_;
  std::optional<CameraError> end_;
  std::uint64_t dropped_ = 0;
  bool isScheduled_ = false;
};

}  // namespace detail

// What goes on at a camera, one thing after the other: taken with next(), or handed to a callback with each(). It keeps
// a bounded number of them, counts those that it had to drop, and ends with this object.
//
//   auto events = camera.events();
//   while (const auto event = events.next().get()) ...
//
// Thread: any thread. After the destructor, and after close(), the callback neither runs nor is running; inside a
//         callback they do not wait, and a call in progress on another thread is the last.
template <class T>
class [[nodiscard]] Subscription {
 public:
  explicit Subscription(std::shared_ptr<detail::SubscriptionState<T>> state) : state_(std::move(state)) {}
  Subscription(Subscription&&) noexcept = default;
  Subscription& operator=(Subscription&& other) noexcept {
    if (this != &other) {
      close();
      state_ = std::move(other.state_);
    }
    return *this;
  }
  ~Subscription() { close(); }

  // The next one. Without a time limit it waits as long as the subscription lives.
  //
  // Errors: why nothing follows any more; `timeLimit`, `cancelled`.
  Pending<T> next(const RequestOptions& options = {}) { return state_->next(options); }

  // Hands every one to the callback, from now on and where the camera's callbacks run. Once only, and instead of
  // next().
  void each(std::function<void(const T&)> callback) { state_->each(std::move(callback)); }

  // How many were dropped because there was no room.
  std::uint64_t dropped() const { return state_->dropped(); }

  // Ends it. What is kept is gone.
  void close() {
    if (state_) state_->close();
  }

 private:
  std::shared_ptr<detail::SubscriptionState<T>> state_;
};

}  // namespace zel
