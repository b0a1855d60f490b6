#include "gateway/api/event_stream.h"

#include <gtest/gtest.h>

namespace zel::gateway {
namespace {

class EventStreamTest : public testing::Test {
 protected:
  std::string readAll(std::size_t atOnce = 1000) {
    std::string text;
    std::vector<std::uint8_t> bytes(atOnce);
    while (const std::size_t some = stream.read(bytes))
      text.append(bytes.begin(), bytes.begin() + static_cast<long>(some));
    return text;
  }
  static Notice notice(int number) { return {Notice::Kind::camera, {{"n", number}}}; }

  int woken = 0;
  EventStream stream{[this] { ++woken; }};
};

TEST_F(EventStreamTest, WritesEachNoticeAsAnEvent) {
  stream.put({Notice::Kind::link, {{"status", "streaming"}}});
  stream.put({Notice::Kind::statistics, {{"rate", 30}}});
  EXPECT_EQ(readAll(), "event: link\ndata: {\"status\":\"streaming\"}\n\nevent: statistics\ndata: {\"rate\":30}\n\n");
  EXPECT_EQ(woken, 2);
}

TEST_F(EventStreamTest, KeepsALineOfTextOneLine) {
  stream.put({Notice::Kind::camera, {{"text", "a\nb\r\n\nevent: x"}}});
  EXPECT_EQ(readAll(), "event: camera\ndata: {\"text\":\"a\\nb\\r\\n\\nevent: x\"}\n\n");
}

TEST_F(EventStreamTest, CanBeReadByteByByte) {
  stream.put(notice(1));
  EXPECT_EQ(readAll(1), "event: camera\ndata: {\"n\":1}\n\n");
}

TEST_F(EventStreamTest, DropsTheOldestWhereNobodyReads) {
  for (int i = 0; i < static_cast<int>(EventStream::kMost) + 2; ++i) stream.put(notice(i));
  EXPECT_EQ(stream.dropped(), 2u);
  EXPECT_TRUE(readAll().starts_with("event: camera\ndata: {\"n\":2}\n\n"));
}

TEST_F(EventStreamTest, KeepsTheOneWholeThatIsBeingRead) {
  stream.put(notice(0));
  std::uint8_t first[7];
  ASSERT_EQ(stream.read(first), 7u);
  for (int i = 1; i <= static_cast<int>(EventStream::kMost); ++i) stream.put(notice(i));
  EXPECT_TRUE(readAll().starts_with("camera\ndata: {\"n\":0}\n\nevent: camera\ndata: {\"n\":2}\n\n"));
}

TEST_F(EventStreamTest, BoundsItsBytes) {
  const std::string large(EventStream::kMostBytes / 2, 'x');
  for (int i = 0; i < 4; ++i) stream.put({Notice::Kind::camera, {{"t", large}}});
  EXPECT_LE(readAll(1 << 20).size(), EventStream::kMostBytes);
  EXPECT_EQ(stream.dropped(), 3u);
}

}  // namespace
}  // namespace zel::gateway
