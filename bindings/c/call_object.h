#pragma once

#include <ZELTarkaSDK/Pending.h>
#include <ZELTarkaSDK/platform/call_gate.h>
#include <ZELTarkaSDK/zel_begin.h>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include "bindings/c/ask.h"
#include "bindings/c/handles.h"

// Calls that a program has begun.

namespace zel::c {

// Where the end of a call is told, and where its handle goes.
struct Done {
  zel_done_callback callback;
  void* user;
  zel_call** call;

  void check() const {
    if (callback == nullptr) refuse("callback is NULL");
    if (call == nullptr) refuse("call is NULL");
  }
};

// A call that a program holds.
//
// Thread: any thread.
class CallObject {
 public:
  using Handle = zel_call;
  static constexpr Kind kKind = Kind::call;

  CallObject(const Done& done, bool isOnCameraThread)
      : callback_(done.callback), user_(done.user), isOnCameraThread_(isOnCameraThread) {}

  // What gives the call up; set before the handle is handed out.
  void setCancel(std::function<void()> cancel) { cancel_ = std::move(cancel); }
  void cancel() const { cancel_(); }
  void close() {
    gate_.close();
    cancel_();
  }

  // Runs a callback of the program, unless the call was freed. callback: is copied, and keeps what it needs.
  template <class Callback>
  void callBack(Callback callback) {
    gate_.enter([isOnCameraThread = isOnCameraThread_, callback = std::move(callback)] {
      const CameraThreadScope scope(isOnCameraThread);
      callback();
    });
  }

  // Tells the program the end of it. give: gives the result.
  template <class Give>
  void tellEnd(const Give& give) const {
    zel_error error{};
    error.size = sizeof error;
    const zel_status status = guarded(&error, give);
    callback_(user_, status, &error);
  }

 private:
  const zel_done_callback callback_;
  void* const user_;
  const bool isOnCameraThread_;
  std::function<void()> cancel_;
  CallGate gate_;
};

// Ends the call where the result is an error.
template <class T, class Take>
void giveTo(const Take& take, Result<T>& result) {
  if constexpr (std::is_void_v<T>) {
    valueOf(std::move(result));
  } else {
    take(valueOf(std::move(result)));
  }
}

// Hands the call out. take: gives a value to the program; not called for a result without one.
template <class T, class Take>
void startCall(const std::shared_ptr<CallObject>& object, zel_call** call, Pending<T> pending, Take take) {
  const auto kept = std::make_shared<Pending<T>>(std::move(pending));
  object->setCancel([kept] { kept->cancel(); });
  *call = newHandle(object);
  kept->then([object, take = std::move(take)](Result<T> came) {
    const auto result = std::make_shared<Result<T>>(std::move(came));
    object->callBack([object, take, result] { object->tellEnd([&] { giveTo(take, *result); }); });
  });
}

template <class T, class Take>
void startCall(Pending<T> pending, bool isOnCameraThread, const Done& done, Take take) {
  startCall(std::make_shared<CallObject>(done, isOnCameraThread), done.call, std::move(pending), std::move(take));
}

// As ask(), and does not wait.
template <class Out, class Begin>
zel_status beginAsking(zel_camera* camera, int time_limit, const Done& done, zel_error* error, const Out& out,
                       const Begin& begin) {
  return guarded(error, [&] {
    out.check();
    done.check();
    const RequestOptions options = withTimeLimit(time_limit);
    const auto object = objectOf<CameraObject>(camera);
    auto pending = object->with([&](Camera& asked) { return begin(asked, options); });
    if constexpr (std::is_same_v<Out, Nothing>) {
      startCall(std::move(pending), object->callsOnCameraThread(), done, out);
    } else {
      startCall(std::move(pending), object->callsOnCameraThread(), done, [out](const auto& value) { out.put(value); });
    }
  });
}

}  // namespace zel::c
