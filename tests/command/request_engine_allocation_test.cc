// What many requests leave in memory. A program of its own, because that replaces the global allocator.

#include <algorithm>

#include "tests/command/command_test.h"
#include "tests/live_bytes.h"

namespace zel::test {
namespace {

class RequestMemoryTest : public CommandTest {
 protected:
  // Some of each kind: answered, refused, sent twice before the one answer, and answered without being asked.
  void exchange(int rounds) {
    for (int round = 0; round < rounds; ++round) {
      ucd().msgReqSetWBMode(2, count());
      EXPECT_EQ(written().size(), 9u);
      answer("1AC0 01");
      ucd().msgReqGetFlickerWithRebackBlock([this](const auto&, std::uint8_t) { ++completions; });
      EXPECT_EQ(written().size(), 8u);
      answer("24C0 00");
      ucd().msgReqSetWBMode(2, count());
      ucd().msgReqSetWBMode(2, count());
      EXPECT_EQ(written().size(), 18u);
      answer("1AC0 00");
      answer("1AC0 01");
    }
  }
  std::function<void(const std::optional<ZELError>&)> count() {
    return [this](const std::optional<ZELError>&) { ++completions; };
  }

  int completions = 0;
};

TEST_F(RequestMemoryTest, HoldsAfterAHundredThousandRequestsWhatItHeldAfterAThousand) {
  exchange(250);
  const long held = liveBytes();
  exchange(24'750);
  EXPECT_LE(liveBytes() - held, 4096);
  EXPECT_EQ(completions, 75'000);
}

}  // namespace
}  // namespace zel::test
