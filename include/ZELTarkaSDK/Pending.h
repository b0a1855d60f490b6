#pragma once

#include <chrono>
#include <condition_variable>
#include <coroutine>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>

#include <ZELTarkaSDK/Result.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// Runs functions later, in the order in which they are given: a host's event loop, as a camera's callbacks need it.
//
// Thread: called on any thread; it must not run the function inside the call.
using Executor = std::function<void(std::function<void()>)>;

// What a request may take, and how it is given up.
struct RequestOptions {
  // Counts from the call, the wait behind other requests of the kind included, and of photos and files from their
  // latest progress. Zero or less: the camera's own.
  std::chrono::milliseconds timeLimit{0};
  // Requesting the stop ends the call with `cancelled`. What the camera was already asked to do it may still do.
  std::stop_token stop = {};
};

template <class T>
class Pending;

namespace detail {

// Where a camera's callbacks run. The default: at once.
class ZEL_EXPORT Callbacks {
 public:
  virtual ~Callbacks() = default;
  // Runs it there, later.
  virtual void post(std::function<void()> call) const { std::exchange(call, nullptr)(); }
  // Runs it there: at once where this is the place.
  virtual void dispatch(std::function<void()> call) const { post(std::move(call)); }
};

// What the two ends of a pending result share.
class ZEL_EXPORT PendingBase {
 public:
  explicit PendingBase(std::shared_ptr<const Callbacks> callbacks);
  virtual ~PendingBase();
  PendingBase(const PendingBase&) = delete;
  PendingBase& operator=(const PendingBase&) = delete;

  // Waits until the result is there. False where this thread runs the camera's callbacks: it would wait for itself.
  bool wait();
  // Runs it where the camera's callbacks run, once the result is there.
  void whenSet(std::function<void()> call);
  // What cancel() does; set before the pending result is handed out.
  void setCancel(std::function<void()> cancel);
  void cancel() const;

 protected:
  // The result is there now. lock: of mutex_; it is given back.
  void wake(std::unique_lock<std::mutex> lock);
  bool isSet() const { return isSet_; }
  std::mutex mutex_;

 private:
  const std::shared_ptr<const Callbacks> callbacks_;
  std::condition_variable set_;
  bool isSet_ = false;
  std::function<void()> cancel_;
  std::function<void()> continuation_;
};

template <class T>
class PendingState final : public PendingBase {
 public:
  using PendingBase::PendingBase;

  // The first result counts; false for any later one.
  bool set(Result<T> result) {
    std::unique_lock lock(mutex_);
    if (isSet()) return false;
    result_.emplace(std::move(result));
    wake(std::move(lock));
    return true;
  }
  Result<T> take() {
    const std::lock_guard lock(mutex_);
    return std::move(*result_);
  }

 private:
  std::optional<Result<T>> result_;
};

}  // namespace detail

// The result of a call that has begun: wait for it, give it a callback, or await it in a coroutine - one of the three,
// once. Dropping it does not end the call; its result is then lost.
//
//   const auto battery = camera.battery().get();
//   camera.battery().then([](zel::Result<zel::Battery> battery) { ... });
//   const auto battery = co_await camera.battery();
//
// It is also what a host's own coroutine may return: it begins at once and ends with co_return of a Result.
//
// Thread: get() on any thread but the one that runs the camera's callbacks, where it would wait for itself; then() and
//         co_await go on where the camera's callbacks run.
template <class T>
class [[nodiscard]] Pending {
 public:
  explicit Pending(std::shared_ptr<detail::PendingState<T>> state) : state_(std::move(state)) {}
  Pending(Pending&&) noexcept = default;
  Pending& operator=(Pending&&) noexcept = default;

  // Waits for the result.
  //
  // Errors: `invalid` on the thread of the callbacks.
  Result<T> get() && { return wait(); }
  Result<T> get() & { return wait(); }

  // Calls the function once with the result, never inside this call.
  void then(std::function<void(Result<T>)> callback) {
    const auto state = state_;
    state->whenSet([state, callback = std::move(callback)] { callback(state->take()); });
  }

  // Ends the call with `cancelled`, unless its result is there.
  void cancel() { state_->cancel(); }

  bool await_ready() const noexcept { return false; }
  void await_suspend(std::coroutine_handle<> coroutine) {
    // The coroutine may end, and this object with it, before the call has returned.
    const auto state = state_;
    state->whenSet([coroutine] { coroutine.resume(); });
  }
  Result<T> await_resume() { return state_->take(); }

  // For a host's own coroutine. An exception out of it ends the process.
  struct promise_type {
    Pending get_return_object() { return Pending(state); }
    std::suspend_never initial_suspend() noexcept { return {}; }
    std::suspend_never final_suspend() noexcept { return {}; }
    void return_value(Result<T> result) { state->set(std::move(result)); }
    [[noreturn]] void unhandled_exception() noexcept { std::terminate(); }
    // What follows it goes on where it ends.
    std::shared_ptr<detail::PendingState<T>> state =
        std::make_shared<detail::PendingState<T>>(std::make_shared<detail::Callbacks>());
  };

 private:
  Result<T> wait() {
    if (state_->wait()) return state_->take();
    return CameraError{CameraError::Reason::invalid,
                       "get() was called where the camera's callbacks run, which would wait for itself; use then() or "
                       "co_await there"};
  }
  std::shared_ptr<detail::PendingState<T>> state_;
};

}  // namespace zel
