#include "live/frame_queue.h"

#include <gtest/gtest.h>

namespace zel::test {
namespace {

LiveFrame frameAt(std::int64_t time) { return std::make_shared<orq::MediaPixelBuffer>(nullptr, time); }

TEST(FrameQueueTest, KeepsTheFiveNewest) {
  FrameQueue queue;
  for (int i = 1; i <= 5; ++i) EXPECT_TRUE(queue.append(frameAt(i)));
  EXPECT_EQ(queue.size(), 5u);
  const auto first = queue.take();
  EXPECT_EQ(first->timestamp, 1);
  EXPECT_TRUE(queue.append(frameAt(6)));
  EXPECT_FALSE(queue.append(frameAt(7)));
  EXPECT_EQ(queue.size(), 5u);
  for (int i = 3; i <= 7; ++i) EXPECT_EQ(queue.take()->timestamp, i);
  EXPECT_EQ(queue.take(), nullptr);
}

TEST(FrameQueueTest, LetsGoOfWhatItForgets) {
  FrameQueue queue;
  const auto frame = frameAt(1);
  queue.append(frame);
  EXPECT_EQ(frame.use_count(), 2);
  queue.clear();
  EXPECT_EQ(frame.use_count(), 1);
  EXPECT_EQ(queue.size(), 0u);
}

}  // namespace
}  // namespace zel::test
