#pragma once

#include <ZELTarkaSDK/MediaPacket.h>
#include <ZELTarkaSDK/Subscription.h>

#include <memory>
#include <optional>
#include <vector>

#include "base/mutex.h"

namespace zel {

// Hands a stream's packets to all who have subscribed to them. Each begins with a key picture, also after a loss, since
// what refers to a picture that is missing cannot be decoded.
//
// Thread: any thread; packets are published by one at a time.
class PacketHub {
 public:
  using State = std::shared_ptr<detail::SubscriptionState<MediaPacket>>;

  void add(const State& subscription);
  // What finds no memory is lost to that subscription.
  void publish(const MediaPacket& packet);
  // For all, and whoever is added from now on.
  void end(const CameraError& why);

 private:
  struct Reader {
    enum class Next { firstKey, keyAfterLoss, all };

    std::weak_ptr<detail::SubscriptionState<MediaPacket>> subscription;
    Next next = Next::firstKey;  // what it gets next; where packets are published
  };

  std::vector<std::shared_ptr<Reader>> readers();
  void hand(const MediaPacket& packet, Reader& reader);

  Mutex mutex_;
  std::vector<std::shared_ptr<Reader>> readers_ ZEL_GUARDED_BY(mutex_);
  std::optional<CameraError> end_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel
