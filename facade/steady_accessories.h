#pragma once

#include <ZELTarkaSDK/platform/forwarding.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/shared_value.h"

namespace zel {

// Accessories of which, after the first session, only that one's opens: a host that has begun with a camera does not
// go on with another one.
//
// Owner:  the wrapped manager must outlive the object.
class SteadyAccessories final : public platform::ForwardingAccessoryManager {
 public:
  using ForwardingAccessoryManager::ForwardingAccessoryManager;

  std::unique_ptr<platform::AccessorySession> openSession(const std::shared_ptr<platform::Accessory>& accessory,
                                                          std::string_view protocol) override {
    const std::string& serial = accessory->description().serialNumber;
    if (serial_.get().value_or(serial) != serial) return nullptr;
    auto session = ForwardingAccessoryManager::openSession(accessory, protocol);
    if (session) serial_.set(serial);
    return session;
  }

 private:
  Guarded<std::optional<std::string>> serial_;
};

}  // namespace zel
