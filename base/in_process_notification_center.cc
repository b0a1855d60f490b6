#include <ZELTarkaSDK/platform/in_process_notification_center.h>

#include <map>
#include <string>
#include <utility>

#include "base/mutex.h"
#include "base/observer_list.h"

namespace zel::platform {
namespace {

using List = ObserverList<const Notification&>;

struct Token final : NotificationObservation {
  explicit Token(Observation kept) : observation(std::move(kept)) {}
  Observation observation;
};

}  // namespace

struct InProcessNotificationCenter::Lists {
  std::shared_ptr<List> of(std::string_view name) {
    const MutexLock lock(mutex);
    auto& list = byName[std::string(name)];
    if (!list) list = std::make_shared<List>();
    return list;
  }

  Mutex mutex;
  std::map<std::string, std::shared_ptr<List>, std::less<>> byName ZEL_GUARDED_BY(mutex);
};

InProcessNotificationCenter::InProcessNotificationCenter() : lists_(std::make_unique<Lists>()) {}
InProcessNotificationCenter::~InProcessNotificationCenter() = default;

std::unique_ptr<NotificationObservation> InProcessNotificationCenter::observe(std::string_view name,
                                                                              Observer observer) {
  return std::make_unique<Token>(lists_->of(name)->add(std::move(observer)));
}

void InProcessNotificationCenter::post(const Notification& notification) {
  lists_->of(notification.name)->notify(notification);
}

}  // namespace zel::platform
