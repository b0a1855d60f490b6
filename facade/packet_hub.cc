#include "facade/packet_hub.h"

#include "base/has_memory_for.h"

namespace zel {

void PacketHub::add(const State& subscription) {
  std::optional<CameraError> end;
  {
    const MutexLock lock(mutex_);
    std::erase_if(readers_, [](const auto& one) { return one->subscription.expired(); });
    readers_.push_back(std::make_shared<Reader>(Reader{subscription}));
    end = end_;
  }
  if (end) subscription->end(*end);
}

void PacketHub::publish(const MediaPacket& packet) {
  ifMemoryAllows([&] {
    for (const auto& reader : readers()) hand(packet, *reader);
  });
}

void PacketHub::hand(const MediaPacket& packet, Reader& reader) {
  const auto subscription = reader.subscription.lock();
  if (!subscription) return;
  const bool isKey = packet.key && packet.track == Track::video;
  if (reader.next == Reader::Next::all || isKey) {
    bool isKept = false;
    ifMemoryAllows([&] { isKept = subscription->push(packet, detail::SubscriptionState<MediaPacket>::Loss::row); });
    reader.next = isKept ? Reader::Next::all : Reader::Next::keyAfterLoss;
  } else if (reader.next == Reader::Next::keyAfterLoss) {
    subscription->countLost();
  }
}

void PacketHub::end(const CameraError& why) {
  {
    const MutexLock lock(mutex_);
    end_ = why;
  }
  for (const auto& reader : readers())
    if (const auto subscription = reader->subscription.lock()) subscription->end(why);
}

std::vector<std::shared_ptr<PacketHub::Reader>> PacketHub::readers() {
  const MutexLock lock(mutex_);
  return readers_;
}

}  // namespace zel
