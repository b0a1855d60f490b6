#include "simulator/host_frames.h"

#include <gmock/gmock.h>

namespace zel::simulator {
namespace {

using testing::HasSubstr;

class HostFramesTest : public testing::Test {
 protected:
  void receive(const Bytes& bytes) { frames.append(bytes); }

  std::optional<HostMessage> message() {
    const auto frame = frames.next();
    if (!frame || !std::holds_alternative<HostMessage>(*frame)) return std::nullopt;
    return std::get<HostMessage>(*frame);
  }

  void expectMessage(std::uint16_t code, const Bytes& body) {
    const auto got = message();
    ASSERT_TRUE(got.has_value());
    EXPECT_EQ(got->code, code);
    EXPECT_EQ(got->body, body);
  }

  HostFrames frames;
};

const Bytes kShutterMute = {
    0x09, 0, 0, 0, 4, 0, 0x0D, 0x40, 1,  // a message with a body of one byte
    0x08, 0, 0, 0, 4, 0, 0x01, 0x40,     // and one without
};

TEST_F(HostFramesTest, FindsMessagesCutAtAnyByte) {
  for (std::size_t cut = 0; cut <= kShutterMute.size(); ++cut) {
    const auto middle = kShutterMute.begin() + static_cast<std::ptrdiff_t>(cut);
    receive(Bytes(kShutterMute.begin(), middle));
    receive(Bytes(middle, kShutterMute.end()));
    expectMessage(0x400D, {1});
    expectMessage(0x4001, {});
    EXPECT_FALSE(frames.next().has_value()) << "cut at " << cut;
  }
}

TEST_F(HostFramesTest, FindsMessagesThatComeByteByByte) {
  for (const std::uint8_t byte : kShutterMute) receive({byte});
  expectMessage(0x400D, {1});
  expectMessage(0x4001, {});
}

TEST_F(HostFramesTest, HandsOverFilesWhole) {
  receive({0x0A, 0, 0, 0, 9, 0, 1, 2, 3, 4});
  const auto frame = frames.next();
  ASSERT_TRUE(frame.has_value());
  EXPECT_EQ(std::get<HostFile>(*frame).payload, (Bytes{1, 2, 3, 4}));
}

TEST_F(HostFramesTest, HandsOverAFileWithoutPayload) {
  receive({6, 0, 0, 0, 9, 0});
  const auto frame = frames.next();
  ASSERT_TRUE(frame.has_value());
  EXPECT_TRUE(std::get<HostFile>(*frame).payload.empty());
}

TEST_F(HostFramesTest, SkipsOtherDataTypesAndMessagesWithoutACode) {
  receive({8, 0, 0, 0, 1, 0, 7, 7});  // video
  receive({6, 0, 0, 0, 4, 0});        // a message of no bytes
  receive({7, 0, 0, 0, 4, 0, 1});     // and of one
  receive({8, 0, 0, 0, 4, 0, 0x01, 0x40});
  expectMessage(0x4001, {});
  EXPECT_FALSE(frames.next().has_value());
  EXPECT_EQ(frames.fault(), "");
}

TEST_F(HostFramesTest, StopsAtALengthBelowTheHeader) {
  for (const std::uint8_t length : Bytes{0, 1, 5}) {
    HostFrames hostile;
    hostile.append(Bytes{length, 0, 0, 0, 4, 0, 0x01, 0x40, 8, 0, 0, 0, 4, 0, 0x01, 0x40});
    EXPECT_FALSE(hostile.next().has_value());
    EXPECT_THAT(hostile.fault(), HasSubstr("the host sent a frame of"));
  }
}

TEST_F(HostFramesTest, StopsAboveTheLargestFile) {
  receive({0x4A, 0, 0, 0x10, 9, 0});  // 256 MiB behind 74 bytes of header
  EXPECT_EQ(frames.fault(), "");
  HostFrames hostile;
  hostile.append(Bytes{0x4B, 0, 0, 0x10, 9, 0});  // and one byte more
  EXPECT_THAT(hostile.fault(), HasSubstr("268435531"));
  HostFrames worse;
  worse.append(Bytes{0xFF, 0xFF, 0xFF, 0xFF, 4, 0});
  EXPECT_THAT(worse.fault(), HasSubstr("4294967295"));
}

TEST_F(HostFramesTest, HandsOverWhatCameBeforeTheFault) {
  receive({8, 0, 0, 0, 4, 0, 0x01, 0x40, 0, 0, 0, 0, 4, 0});
  expectMessage(0x4001, {});
  EXPECT_NE(frames.fault(), "");
}

TEST_F(HostFramesTest, TakesALargeFileInManyPieces) {
  constexpr std::size_t kSize = 3'000'000;
  Bytes header;
  put(header, static_cast<std::uint32_t>(6 + kSize));
  put(header, kFile);
  receive(header);
  for (std::size_t done = 0; done < kSize; done += 1000) receive(Bytes(1000, static_cast<std::uint8_t>(done / 1000)));
  const auto frame = frames.next();
  ASSERT_TRUE(frame.has_value());
  const Bytes& payload = std::get<HostFile>(*frame).payload;
  ASSERT_EQ(payload.size(), kSize);
  EXPECT_EQ(payload[0], 0);
  EXPECT_EQ(payload[1999], 1);
  EXPECT_EQ(payload[kSize - 1], 183);  // 2999 modulo 256
}

}  // namespace
}  // namespace zel::simulator
