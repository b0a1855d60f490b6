#pragma once

#include <ZELTarkaSDK/Camera.h>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <string>
#include <utility>

#include "bindings/c/dispatcher.h"
#include "bindings/c/failure.h"
#include "bindings/c/handles.h"

namespace zel::c {

// A camera that a program holds.
//
// Thread: any thread.
class CameraObject {
 public:
  using Handle = zel_camera;
  static constexpr Kind kKind = Kind::camera;
  using Log = std::function<void(const std::string&)>;

  CameraObject(Camera camera, std::shared_ptr<Dispatcher> dispatcher, Log log)
      : dispatcher_(std::move(dispatcher)), log_(std::move(log)), camera_(std::move(camera)) {}

  // Makes a call that does not wait for the camera. Whoever waits does so afterwards, without holding it.
  //
  // Errors: ZEL_CLOSED.
  template <class Call>
  auto with(Call&& call) {
    const std::shared_lock lock(mutex_);
    if (!camera_) fail({CameraError::Reason::closed, "the camera was closed"});
    return call(*camera_);
  }
  void close();

  // Runs the callbacks; null: the camera's own thread does.
  const std::shared_ptr<Dispatcher>& dispatcher() const { return dispatcher_; }
  bool callsOnCameraThread() const { return dispatcher_ == nullptr; }
  const Log& log() const { return log_; }

 private:
  const std::shared_ptr<Dispatcher> dispatcher_;
  const Log log_;
  std::shared_mutex mutex_;
  std::optional<Camera> camera_;
};

}  // namespace zel::c
