#pragma once

#include <ZELTarkaSDK/Camera.h>

#include <atomic>
#include <functional>
#include <stop_token>

namespace zel::app {

// Requests a stop when the camera is lost, or the user asks to stop.
class LossWatch {
 public:
  enum class Silence { isLoss, isBorne };

  LossWatch(Camera& camera, Silence silence);
  LossWatch(const LossWatch&) = delete;
  LossWatch& operator=(const LossWatch&) = delete;

  std::stop_token stop() const { return stop_.get_token(); }
  bool isLost() const { return isLost_.load(); }
  // Whether the session was opened again by itself, after a stream error.
  bool wasReopened() const { return wasReopened_.load(); }

 private:
  void note(LinkStatus status);

  const Silence silence_;
  std::atomic<bool> isLost_ = false, wasReopened_ = false;
  std::stop_source stop_;
  Subscription<LinkStatus> link_;
  const std::stop_callback<std::function<void()>> user_;
};

}  // namespace zel::app
