#pragma once

#include <ZELTarkaSDK/MediaPacket.h>
#include <ZELTarkaSDK/Subscription.h>

#include "facade/hub.h"

namespace zel {

// Gives a subscription a stream's packets from a key picture on, also after a loss, since what refers to a picture that
// is missing cannot be decoded.
class GiveFromKeyPictures {
 public:
  void operator()(detail::SubscriptionState<MediaPacket>& subscription, const MediaPacket& packet);

 private:
  enum class Next { firstKey, keyAfterLoss, all };

  Next next_ = Next::firstKey;
};

using PacketHub = Hub<MediaPacket, GiveFromKeyPictures>;

}  // namespace zel
