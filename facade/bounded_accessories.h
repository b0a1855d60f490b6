#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <utility>

#include <ZELTarkaSDK/platform/forwarding.h>

#include "base/shared_value.h"

namespace zel {

// How long to go on reading what cameras send. Asked before every read, it stops a camera that sends without end
// before it is in memory, which a look from another thread could not.
// Thread: any thread.
class ReadingBound {
 public:
  // From now on asks that whether enough has come; null reads on without an end. The former one is not asked any more
  // when the call returns, nor is it being asked. Thread of isEnough: the session thread.
  void set(std::function<bool()> isEnough) { isEnough_.set(std::move(isEnough)); }
  bool isReached() const {
    return isEnough_.with([](const auto& isEnough) { return isEnough && isEnough(); });
  }

 private:
  Guarded<std::function<bool()>> isEnough_;
};

// Accessories whose streams end, without a word, where the bound is reached: their camera has fallen silent.
//
// Owner:  the wrapped manager must outlive the object; the sessions share the bound.
class BoundedAccessories final : public platform::ForwardingAccessoryManager {
 public:
  explicit BoundedAccessories(platform::AccessoryManager& wrapped) : ForwardingAccessoryManager(wrapped) {}

  const std::shared_ptr<ReadingBound>& bound() const { return bound_; }

  std::unique_ptr<platform::AccessorySession> openSession(const std::shared_ptr<platform::Accessory>& accessory,
                                                          std::string_view protocol) override;

 private:
  const std::shared_ptr<ReadingBound> bound_ = std::make_shared<ReadingBound>();
};

}  // namespace zel
