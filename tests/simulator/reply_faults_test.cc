#include "simulator/reply_faults.h"

#include <gmock/gmock.h>

#include <set>
#include <string>

namespace zel::simulator {
namespace {

class ReplyFaultsTest : public testing::Test {
 protected:
  Bytes sent(std::uint16_t code, const Bytes& body) { return replyAfterFaults(faults, code, body, random); }

  void add(const std::string& spec) {
    std::string error;
    EXPECT_TRUE(faults.add(spec, error)) << error;
  }

  Faults faults;
  std::mt19937_64 random{1};
};

constexpr std::uint16_t kFlicker = 0x4024, kBattery = 0x4001, kClock = 0x4049;

TEST_F(ReplyFaultsTest, ChangesNothingWithoutAFault) { EXPECT_EQ(sent(kFlicker, {1, 7}), (Bytes{1, 7})); }

TEST_F(ReplyFaultsTest, SaysYesByEveryFlagAboveOne) {
  add("high-flags");
  std::set<int> flags;
  for (int i = 0; i < 10'000; ++i) {
    const Bytes body = sent(kFlicker, {1, 7});
    ASSERT_EQ(body.size(), 2u);
    EXPECT_EQ(body[1], 7);
    flags.insert(body[0]);
  }
  EXPECT_EQ(flags.size(), 254u);
  EXPECT_EQ(*flags.begin(), 2);
  EXPECT_EQ(*flags.rbegin(), 255);
}

TEST_F(ReplyFaultsTest, LeavesRefusalsAndRepliesWithoutAFlagAsTheyAre) {
  add("high-flags");
  EXPECT_EQ(sent(kFlicker, {0}), Bytes{0});
  EXPECT_EQ(sent(kBattery, {1, 100}), (Bytes{1, 100}));
  EXPECT_EQ(sent(kClock, {1, 0, 0, 0, 0, 0, 0, 0}), (Bytes{1, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(ReplyFaultsTest, AddsOneToSixteenBytesBehindTheReply) {
  add("trailing-bytes");
  std::set<std::size_t> sizes;
  for (int i = 0; i < 1000; ++i) {
    const Bytes body = sent(kBattery, {1, 100});
    ASSERT_GT(body.size(), 2u);
    EXPECT_EQ(body[0], 1);
    EXPECT_EQ(body[1], 100);
    sizes.insert(body.size() - 2);
  }
  EXPECT_EQ(sizes.size(), 16u);
  EXPECT_EQ(*sizes.begin(), 1u);
  EXPECT_EQ(*sizes.rbegin(), 16u);
}

TEST_F(ReplyFaultsTest, AimsAtTheChosenRequest) {
  for (const char* spec : {"high-flags=0x4024", "trailing-bytes=0x4024", "short-reply=0x4012"}) add(spec);
  EXPECT_EQ(sent(0x4030, {1, 7}), (Bytes{1, 7}));
  EXPECT_GT(sent(kFlicker, {1, 7}).size(), 2u);
  EXPECT_EQ(sent(0x4012, {1, 'A'}), Bytes());
}

TEST_F(ReplyFaultsTest, TakesTheBodyAwayWhateverElseGoesWrong) {
  for (const char* spec : {"short-reply", "trailing-bytes", "high-flags"}) add(spec);
  EXPECT_EQ(sent(kFlicker, {1, 7}), Bytes());
}

}  // namespace
}  // namespace zel::simulator
