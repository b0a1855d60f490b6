#include "gateway/line/host_queue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "tests/gateway/line/line_test.h"

namespace zel::test {
namespace {

using gateway::HostQueue;
using gateway::SharedBytes;

Bytes all(HostQueue& queue) {
  Bytes bytes;
  std::array<ByteView, 2> pieces;
  while (const std::size_t count = queue.front(pieces)) {
    std::size_t size = 0;
    for (std::size_t i = 0; i < count; ++i) {
      bytes.insert(bytes.end(), pieces[i].begin(), pieces[i].end());
      size += pieces[i].size();
    }
    queue.written(size);
  }
  return bytes;
}
SharedBytes shared(std::initializer_list<int> values) { return SharedBytes::copyOf(bytes(values)); }

TEST(HostQueue, GivesWhatWasNotWrittenYet) {
  HostQueue queue;
  queue.add(shared({1, 2, 3}));
  queue.addMedia(shared({4, 5}));
  queue.written(4);
  EXPECT_EQ(all(queue), bytes({5}));
  EXPECT_TRUE(queue.empty());
}

TEST(HostQueue, DropsWholeMediaAlone) {
  HostQueue queue;
  queue.addMedia(shared({1, 2}));
  queue.add(shared({3}));
  queue.addMedia(shared({4}));
  queue.written(1);
  queue.dropMedia();
  EXPECT_EQ(all(queue), bytes({2, 3})) << "a frame that has begun is ended";
}

TEST(HostQueue, KnowsWhenItHoldsTooMuch) {
  HostQueue queue;
  queue.addMedia(SharedBytes::copyOf(repeated(HostQueue::kMostMedia - HostQueue::kPerEntry, 0)));
  EXPECT_FALSE(queue.holdsTooMuchMedia());
  queue.addMedia(SharedBytes::copyOf({}));
  EXPECT_TRUE(queue.holdsTooMuchMedia());
  queue.dropMedia();
  EXPECT_FALSE(queue.holdsTooMuchMedia());
  EXPECT_FALSE(queue.overflows());
}

}  // namespace
}  // namespace zel::test
