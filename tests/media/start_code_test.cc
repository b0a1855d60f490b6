#include "media/start_code.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/link/bytes.h"

namespace zel::test {
namespace {

// Where the start code is found, as an offset; the search ends at `end`.
std::ptrdiff_t found(const Bytes& data, std::size_t first, std::size_t end) {
  return findStartCode(data.data() + first, data.data() + end) - data.data();
}

TEST(StartCodeTest, FindsOneAtEveryPositionOfALongRun) {
  for (std::size_t at = 0; at + 4 <= 1200; ++at) {
    Bytes data = repeated(1200, 0xFF);
    std::ranges::copy(bytes({0, 0, 0, 1}), data.begin() + static_cast<std::ptrdiff_t>(at));
    EXPECT_EQ(found(data, 0, 1197), static_cast<std::ptrdiff_t>(at));
  }
}

TEST(StartCodeTest, FindsOneBehindAnyFirstPosition) {
  Bytes data = repeated(1200, 0xFF);
  std::ranges::copy(bytes({0, 0, 0, 1}), data.begin() + 700);
  for (std::size_t first = 0; first <= 700; ++first) EXPECT_EQ(found(data, first, 1197), 700);
  EXPECT_EQ(found(data, 701, 1197), 1197);
}

TEST(StartCodeTest, IgnoresOneThatBeginsAtTheEnd) {
  const Bytes data = bytes({9, 9, 0, 0, 0, 1});
  EXPECT_EQ(found(data, 0, 3), 2);
  EXPECT_EQ(found(data, 0, 2), 2);  // the end itself
  EXPECT_EQ(found(data, 2, 2), 2);
}

TEST(StartCodeTest, KnowsNoShorterForm) {
  EXPECT_EQ(found(bytes({5, 0, 0, 1, 5, 5, 5, 5}), 0, 5), 5);
  EXPECT_EQ(found(bytes({0, 0, 0, 2, 0, 0, 1, 1}), 0, 5), 5);
}

TEST(StartCodeTest, FindsTheLastZerosOfALongRunOfZeros) {
  Bytes data = repeated(1000, 0);
  data[903] = 1;
  EXPECT_EQ(found(data, 0, 997), 900);
}

// What is copied up to the start code; the room ends where the search does.
Bytes copied(const Bytes& data, std::size_t first, std::size_t end) {
  Bytes room(end - first);
  const std::uint8_t* const stop = copyToStartCode(data.data() + first, data.data() + end, room.data());
  room.resize(static_cast<std::size_t>(stop - data.data()) - first);
  return room;
}

TEST(StartCodeTest, CopiesWhatStandsBeforeOneAtEveryPosition) {
  for (std::size_t at = 0; at + 4 <= 1200; ++at) {
    Bytes data(1200);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::uint8_t>(i % 251 + 1);
    std::ranges::copy(bytes({0, 0, 0, 1}), data.begin() + static_cast<std::ptrdiff_t>(at));
    EXPECT_EQ(copied(data, 0, 1197), Bytes(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(at)));
  }
}

TEST(StartCodeTest, CopiesEverythingWhereThereIsNone) {
  for (std::size_t size = 0; size <= 1100; ++size) {
    const Bytes data = repeated(size + 3, 0);
    EXPECT_EQ(copied(data, 0, size), repeated(size, 0));
  }
}

// Streams with few other values than 0 and 1, so that every near miss occurs.
RC_GTEST_PROP(StartCodeTest, FindsWhatALookAtEveryByteFinds, ()) {
  const auto data =
      *rc::gen::container<Bytes>(*rc::gen::inRange<std::size_t>(3, 2000),
                                 rc::gen::element<std::uint8_t>(0, 0, 0, 0, 0, 0, 1, 7, 7, 7, 7, 7, 7, 7));
  const std::size_t end = data.size() - 3;
  const std::size_t first = *rc::gen::inRange<std::size_t>(0, end + 1);
  std::size_t expected = first;
  while (expected < end &&
         (data[expected] != 0 || data[expected + 1] != 0 || data[expected + 2] != 0 || data[expected + 3] != 1)) {
    ++expected;
  }
  RC_ASSERT(found(data, first, end) == static_cast<std::ptrdiff_t>(expected));
  const auto at = [&](std::size_t offset) { return data.begin() + static_cast<std::ptrdiff_t>(offset); };
  RC_ASSERT(copied(data, first, end) == Bytes(at(first), at(expected)));
}

}  // namespace
}  // namespace zel::test
