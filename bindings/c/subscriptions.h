#pragma once

#include <ZELTarkaSDK/Subscription.h>
#include <ZELTarkaSDK/zel_media.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

#include "bindings/c/ask.h"
#include "bindings/c/call_object.h"
#include "bindings/c/handles.h"

namespace zel::c {

// A subscription that a program holds.
//
// Thread: any thread.
class SubscriptionObject {
 public:
  using Handle = zel_subscription;
  static constexpr Kind kKind = Kind::subscription;

  virtual ~SubscriptionObject() = default;
  virtual std::uint64_t dropped() const = 0;
  virtual void close() = 0;
};

template <class T>
class SubscriptionTo final : public SubscriptionObject {
 public:
  SubscriptionTo(Subscription<T> subscription, bool isOnCameraThread, bool hasCallback)
      : subscription_(std::move(subscription)), isOnCameraThread_(isOnCameraThread), hasCallback_(hasCallback) {}
  std::uint64_t dropped() const override { return subscription_.dropped(); }
  void close() override { subscription_.close(); }
  bool callsOnCameraThread() const { return isOnCameraThread_; }
  bool hasCallback() const { return hasCallback_; }
  Subscription<T>& subscription() { return subscription_; }

 private:
  Subscription<T> subscription_;
  const bool isOnCameraThread_;
  const bool hasCallback_;
};

// capacity: where none is given.
SubscriptionOptions queueOf(const zel_queue_options* queue, std::size_t capacity);

// Gives a program the subscription, and its callback, if any, what comes. isOnCameraThread: where that runs.
template <class T>
void subscribe(Subscription<T> subscription, bool isOnCameraThread, std::function<void(const T&)> callback,
               zel_subscription** out) {
  const auto object =
      std::make_shared<SubscriptionTo<T>>(std::move(subscription), isOnCameraThread, callback != nullptr);
  *out = newHandle<SubscriptionObject>(object);
  if (!callback) return;
  object->subscription().each([isOnCameraThread, callback = std::move(callback)](const T& item) {
    const CameraThreadScope scope(isOnCameraThread);
    callback(item);
  });
}

// One whose things are taken one by one.
template <class T>
std::shared_ptr<SubscriptionTo<T>> takenFrom(zel_subscription* handle) {
  auto typed = std::dynamic_pointer_cast<SubscriptionTo<T>>(objectOf<SubscriptionObject>(handle));
  if (!typed) refuse("this subscription gives something else");
  if (typed->hasCallback()) refuse("this subscription has a callback, which gets everything");
  return typed;
}

// Waits for the next one.
template <class T>
T nextOf(zel_subscription* handle, int time_limit) {
  const RequestOptions options = withTimeLimit(time_limit);
  checkMayWait();
  return valueOf(takenFrom<T>(handle)->subscription().next(options).get());
}

// The same without waiting. take: gives it to the program.
template <class T, class Take>
void beginNext(zel_subscription* handle, int time_limit, const Done& done, Take take) {
  const RequestOptions options = withTimeLimit(time_limit);
  done.check();
  const auto typed = takenFrom<T>(handle);
  startCall(typed->subscription().next(options), typed->callsOnCameraThread(), done, std::move(take));
}

}  // namespace zel::c
