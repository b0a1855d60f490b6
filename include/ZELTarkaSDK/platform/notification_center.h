#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include <ZELTarkaSDK/platform/accessory.h>

namespace zel::platform {

// A value of a notification.
using NotificationValue =
    std::variant<bool, std::int64_t, std::uint64_t, double, std::string, std::shared_ptr<Accessory>>;
using NotificationUserInfo = std::map<std::string, NotificationValue, std::less<>>;

struct Notification {
  std::string name;
  NotificationUserInfo userInfo;
  const void* sender = nullptr;  // the sender, for comparison only

  // The accessory under `key`, or null when the key is absent or holds something else.
  std::shared_ptr<Accessory> accessory(std::string_view key) const {
    const auto found = userInfo.find(key);
    if (found == userInfo.end()) return nullptr;
    const auto* accessory = std::get_if<std::shared_ptr<Accessory>>(&found->second);
    return accessory != nullptr ? *accessory : nullptr;
  }
};

// Keeps an observer registered. Destroying it removes the observer, which afterwards neither runs nor is running.
// Destroyed inside any callback, including the observer itself, it does not wait: a call in progress on another thread
// is then the last.
class NotificationObservation {
 public:
  virtual ~NotificationObservation() = default;
};

// Named broadcasts inside the process.
// Thread: any thread. Observers run on the posting thread, in the order of registration, each one call at a time.
class NotificationCenter {
 public:
  using Observer = std::function<void(const Notification&)>;

  virtual ~NotificationCenter() = default;

  // Calls the observer for every later notification of that name.
  [[nodiscard]] virtual std::unique_ptr<NotificationObservation> observe(std::string_view name, Observer observer) = 0;

  // Calls every observer of the name before it returns.
  virtual void post(const Notification& notification) = 0;
};

}  // namespace zel::platform
