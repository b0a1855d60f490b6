#include "facade/packet_hub.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace zel {
namespace {

using State = detail::SubscriptionState<MediaPacket>;
using Drop = SubscriptionOptions::Drop;

// Waits that nobody ends.
struct NoLimit final : detail::Patience {
  std::shared_ptr<void> watch(const RequestOptions&, std::function<void(CameraError)>) override { return nullptr; }
};

Subscription<MediaPacket> added(PacketHub& hub, std::size_t capacity, Drop drop = Drop::oldest) {
  const auto state = std::make_shared<State>(SubscriptionOptions{capacity, drop}, std::make_shared<detail::Callbacks>(),
                                             std::make_shared<NoLimit>());
  hub.add(state);
  return Subscription<MediaPacket>(state);
}

// A row of packets: K a key picture, p any other picture, s sound. Their times are their places.
void publish(PacketHub& hub, const std::string& row, std::int64_t from = 0) {
  for (const char one : row) hub.publish({one == 's' ? Track::audio : Track::video, one == 'K', from++, {}, {}});
}

// The times of what waits, each followed by a comma.
std::string taken(Subscription<MediaPacket>& packets) {
  std::string times;
  while (true) {
    auto next = packets.next();
    next.cancel();
    const auto packet = next.get();
    if (!packet) return times;
    times += std::to_string(packet->time) + ",";
  }
}

TEST(PacketHubTest, TheFirstPacketIsAKeyPicture) {
  PacketHub hub;
  auto packets = added(hub, 16);
  publish(hub, "pspKpsp");
  EXPECT_EQ(taken(packets), "3,4,5,6,");
  EXPECT_EQ(packets.dropped(), 0u) << "what was before its first picture is no loss";
}

TEST(PacketHubTest, AfterALossItGoesOnWithTheNextKeyPicture) {
  PacketHub hub;
  auto packets = added(hub, 3);
  publish(hub, "KppppsKp");
  EXPECT_EQ(taken(packets), "6,7,") << "the fourth found three that waited, which are of no use without it";
  EXPECT_EQ(packets.dropped(), 6u);
}

TEST(PacketHubTest, AKeyPictureThatFindsNoPlaceIsLostToo) {
  PacketHub hub;
  auto packets = added(hub, 2);
  publish(hub, "KpKpK");
  EXPECT_EQ(taken(packets), "4,");
  EXPECT_EQ(packets.dropped(), 4u);
}

TEST(PacketHubTest, WhereTheNewestIsDroppedWhatWaitsIsKept) {
  PacketHub hub;
  auto packets = added(hub, 2, Drop::newest);
  publish(hub, "Kppp");
  EXPECT_EQ(taken(packets), "0,1,");
  publish(hub, "psKp", 4);
  EXPECT_EQ(taken(packets), "6,7,");
  EXPECT_EQ(packets.dropped(), 4u);
}

TEST(PacketHubTest, WhoIsTooSlowDoesNotTouchOthers) {
  PacketHub hub;
  auto few = added(hub, 1), all = added(hub, 16);
  publish(hub, "Kpps");
  EXPECT_EQ(taken(all), "0,1,2,3,");
  EXPECT_EQ(taken(few), "");
  EXPECT_EQ(few.dropped(), 4u);
}

TEST(PacketHubTest, WhoIsAddedAfterTheEndHearsOfIt) {
  PacketHub hub;
  hub.end({CameraError::Reason::closed, "over"});
  auto packets = added(hub, 1);
  EXPECT_EQ(packets.next().get().error().message, "over");
}

}  // namespace
}  // namespace zel
