#include "apps/zelcam/commands/event_queue.h"

#include <gtest/gtest.h>

#include <string>

namespace zel::app {
namespace {

ZELMessageFields named(std::size_t size) { return {{"nsString", std::string(size, 'x')}}; }

TEST(EventQueueTest, GivesEventsInTheirOrder) {
  EventQueue queue;
  EXPECT_TRUE(queue.put(2, ZELMessageFields{{"intValue", std::int32_t{40}}}));
  EXPECT_TRUE(queue.put(13, std::nullopt));
  EXPECT_EQ(queue.take()->type, 2);
  EXPECT_EQ(queue.take()->type, 13);
  EXPECT_FALSE(queue.take());
  EXPECT_EQ(queue.dropped(), 0u);
}

TEST(EventQueueTest, DropsAndCountsWhatComesWhenAThousandWait) {
  EventQueue queue;
  for (int number = 1; number <= 1000; ++number) EXPECT_TRUE(queue.put(number, std::nullopt));
  EXPECT_FALSE(queue.put(1001, std::nullopt));
  EXPECT_EQ(queue.dropped(), 1u);
  EXPECT_EQ(queue.take()->type, 1);
  EXPECT_TRUE(queue.put(1002, std::nullopt));
}

TEST(EventQueueTest, DropsAndCountsWhatIsBeyondSixteenMebibytes) {
  EventQueue queue;
  EXPECT_TRUE(queue.put(1, named(std::size_t{16} << 20)));
  EXPECT_FALSE(queue.put(2, named(1)));
  EXPECT_TRUE(queue.put(3, std::nullopt));
  queue.take();
  EXPECT_TRUE(queue.put(4, named(1)));
  EXPECT_EQ(queue.dropped(), 1u);
}

TEST(EventQueueTest, NeverTakesAnEventThatIsLargerThanAll) {
  EventQueue queue;
  EXPECT_FALSE(queue.put(1, named((std::size_t{16} << 20) + 1)));
}

}  // namespace
}  // namespace zel::app
