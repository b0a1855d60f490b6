#include "outputs/packet_queue.h"

#include <gmock/gmock.h>

#include <vector>

namespace zel {
namespace {

using testing::ElementsAre;

MediaPacket picture(std::int64_t time, bool key = false, std::size_t size = 10) {
  return {Track::video, key, time, ZELData(std::vector<std::uint8_t>(size)), std::nullopt};
}
MediaPacket sound(std::int64_t time) { return {Track::audio, false, time, ZELData(std::vector<std::uint8_t>(1)), {}}; }

std::vector<std::int64_t> taken(PacketQueue& queue) {
  std::vector<std::int64_t> times;
  while (const auto packet = queue.take()) times.push_back(packet->time);
  return times;
}

TEST(PacketQueueTest, BeginsWithAKeyPicture) {
  PacketQueue queue;
  queue.put(picture(1));
  queue.put(sound(2));
  queue.put(picture(3, true));
  queue.put(sound(4));
  EXPECT_THAT(taken(queue), ElementsAre(3, 4));
  EXPECT_EQ(queue.dropped(), 2u);
}

TEST(PacketQueueTest, HoldsAsManyBytesAsItMay) {
  PacketQueue queue({.bytes = 30, .microseconds = 1000});
  EXPECT_FALSE(queue.put(picture(1, true)));
  EXPECT_FALSE(queue.put(picture(2)));
  EXPECT_FALSE(queue.put(picture(3)));
  EXPECT_THAT(taken(queue), ElementsAre(1, 2, 3));
  EXPECT_EQ(queue.dropped(), 0u);
}

TEST(PacketQueueTest, AByteTooManyCostsTheOldestUpToTheNextKeyPicture) {
  PacketQueue queue({.bytes = 30, .microseconds = 1000});
  queue.put(picture(1, true));
  queue.put(picture(2));
  queue.put(picture(3, true, 9));
  EXPECT_TRUE(queue.put(picture(4, false, 2)));
  EXPECT_THAT(taken(queue), ElementsAre(3, 4));
  EXPECT_EQ(queue.dropped(), 2u);
}

TEST(PacketQueueTest, WithoutAnotherKeyPictureAllIsDroppedUpToTheNextThatComes) {
  PacketQueue queue({.bytes = 30, .microseconds = 1000});
  queue.put(picture(1, true));
  queue.put(picture(2));
  queue.put(picture(3));
  EXPECT_TRUE(queue.put(picture(4)));
  EXPECT_TRUE(queue.empty());
  EXPECT_FALSE(queue.put(picture(5)));
  EXPECT_FALSE(queue.put(picture(6, true)));
  EXPECT_THAT(taken(queue), ElementsAre(6));
  EXPECT_EQ(queue.dropped(), 5u);
}

TEST(PacketQueueTest, HoldsAsMuchTimeAsItMay) {
  PacketQueue queue({.bytes = 1000, .microseconds = 100});
  queue.put(picture(0, true));
  queue.put(picture(50, true));
  EXPECT_FALSE(queue.put(sound(100)));
  EXPECT_TRUE(queue.put(sound(101)));
  EXPECT_THAT(taken(queue), ElementsAre(50, 100, 101));
}

TEST(PacketQueueTest, AfterARestartItBeginsWithAKeyPictureAgain) {
  PacketQueue queue;
  queue.put(picture(1, true));
  queue.restart();
  EXPECT_TRUE(queue.empty());
  queue.put(picture(2));
  queue.put(picture(3, true));
  EXPECT_THAT(taken(queue), ElementsAre(3));
  EXPECT_EQ(queue.dropped(), 2u);
}

TEST(PacketQueueTest, APictureLargerThanAllRoomIsDropped) {
  PacketQueue queue({.bytes = 30, .microseconds = 1000});
  EXPECT_TRUE(queue.put(picture(1, true, 31)));
  EXPECT_TRUE(queue.empty());
}

}  // namespace
}  // namespace zel
