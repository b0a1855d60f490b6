#include "link/write_queue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/link/bytes.h"

namespace zel::test {
namespace {

using testing::ElementsAre;

TEST(WriteQueueTest, GivesBytesOutInOrder) {
  WriteQueue queue;
  queue.append(bytes({1, 2, 3}));
  queue.removeFirst(1);
  queue.append(bytes({4}));
  EXPECT_THAT(queue.view(), ElementsAre(2, 3, 4));
  queue.removeFirst(2);
  EXPECT_THAT(queue.view(), ElementsAre(4));
  queue.removeFirst(1);
  EXPECT_TRUE(queue.empty());
}

TEST(WriteQueueTest, KeepsTwoHundredOfThreeHundredBytesInOrder) {
  WriteQueue queue;
  queue.append(join(repeated(100, 1), repeated(100, 2), repeated(100, 3)));
  queue.removeFirst(100);
  ASSERT_EQ(queue.view().size(), 200u);
  EXPECT_EQ(queue.view().front(), 2);
  EXPECT_EQ(queue.view().back(), 3);
}

}  // namespace
}  // namespace zel::test
