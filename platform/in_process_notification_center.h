#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/mutex.h"
#include "platform/notification_center.h"
#include "platform/observer_list.h"

namespace zel::platform {

// The notification centre of every platform: it needs nothing but the standard library.
class InProcessNotificationCenter final : public NotificationCenter {
 public:
  [[nodiscard]] std::unique_ptr<NotificationObservation> observe(std::string_view name, Observer observer) override {
    return std::make_unique<Token>(listFor(name)->add(std::move(observer)));
  }

  void post(const Notification& notification) override { listFor(notification.name)->notify(notification); }

 private:
  using List = ObserverList<const Notification&>;

  struct Token final : NotificationObservation {
    explicit Token(Observation kept) : observation(std::move(kept)) {}
    Observation observation;
  };

  std::shared_ptr<List> listFor(std::string_view name) {
    const MutexLock lock(mutex_);
    auto& list = lists_[std::string(name)];
    if (!list) list = std::make_shared<List>();
    return list;
  }

  Mutex mutex_;
  std::map<std::string, std::shared_ptr<List>, std::less<>> lists_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel::platform
