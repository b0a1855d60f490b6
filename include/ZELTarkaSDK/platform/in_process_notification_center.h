#pragma once

#include <memory>

#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/platform/notification_center.h>

namespace zel::platform {

// A notification centre for every platform: it needs only the standard library.
class ZEL_EXPORT InProcessNotificationCenter final : public NotificationCenter {
 public:
  InProcessNotificationCenter();
  ~InProcessNotificationCenter() override;
  InProcessNotificationCenter(const InProcessNotificationCenter&) = delete;
  InProcessNotificationCenter& operator=(const InProcessNotificationCenter&) = delete;

  [[nodiscard]] std::unique_ptr<NotificationObservation> observe(std::string_view name, Observer observer) override;
  void post(const Notification& notification) override;

 private:
  struct Lists;
  const std::unique_ptr<Lists> lists_;
};

}  // namespace zel::platform
