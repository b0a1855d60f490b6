#include "facade/packet_hub.h"

#include "base/has_memory_for.h"

namespace zel {

// A packet that finds no memory is lost like one that finds no place.
void GiveFromKeyPictures::operator()(detail::SubscriptionState<MediaPacket>& subscription, const MediaPacket& packet) {
  const bool isKey = packet.key && packet.track == Track::video;
  if (next_ == Next::all || isKey) {
    bool isKept = false;
    ifMemoryAllows([&] { isKept = subscription.push(packet, detail::SubscriptionState<MediaPacket>::Loss::row); });
    next_ = isKept ? Next::all : Next::keyAfterLoss;
  } else if (next_ == Next::keyAfterLoss) {
    subscription.countLost();
  }
}

}  // namespace zel
