#include <ZELTarkaSDK/Subscription.h>
#include <ZELTarkaSDK/platform/call_gate.h>

namespace zel::detail {

bool DeliveryGate::enter() {
  const std::lock_guard lock(mutex_);
  if (isClosed_) return false;
  isInside_ = true;
  return true;
}

void DeliveryGate::leave() {
  const std::lock_guard lock(mutex_);
  isInside_ = false;
  left_.notify_all();
}

void DeliveryGate::close() {
  std::unique_lock lock(mutex_);
  isClosed_ = true;
  if (!insideCallback()) left_.wait(lock, [this] { return !isInside_; });
}

}  // namespace zel::detail
