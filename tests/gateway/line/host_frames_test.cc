#include "gateway/line/host_frames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/gateway/line/line_test.h"

namespace zel::test {
namespace {

using gateway::HostFrames;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<Bytes> taken(HostFrames& frames, const Bytes& bytes) {
  std::vector<Bytes> all;
  ByteView left(bytes);
  while (auto frame = frames.take(left)) all.push_back(frame->bytes);
  return all;
}

TEST(HostFrames, CutsAMessageAtAnyByte) {
  const Bytes whole = message(0x4001, bytes({7}));
  for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
    HostFrames frames;
    const auto at = whole.begin() + static_cast<std::ptrdiff_t>(cut);
    auto all = taken(frames, Bytes(whole.begin(), at));
    for (const auto& one : taken(frames, Bytes(at, whole.end()))) all.push_back(one);
    EXPECT_THAT(all, ElementsAre(whole)) << "cut at " << cut;
  }
}

TEST(HostFrames, PassesOverFramesOfOtherTypes) {
  HostFrames frames;
  EXPECT_THAT(taken(frames, join(frameOf(1, bytes({1, 2})), frameOf(99, {}), message(0x4001))),
              ElementsAre(message(0x4001)));
}

TEST(HostFrames, AnImpossibleLengthIsAFault) {
  for (const Bytes& bad : {bytes({0, 0, 0, 0, 4, 0}), bytes({5, 0, 0, 0, 4, 0}), bytes({0xFF, 0xFF, 0xFF, 0xFF, 1, 0}),
                           bytes({1, 0, 16, 0, 4, 0}), bytes({1, 0, 0, 16, 9, 0})}) {
    HostFrames frames;
    EXPECT_THAT(taken(frames, join(bad, message(0x4001))), IsEmpty());
    EXPECT_TRUE(frames.isFaulty());
  }
}

TEST(HostFrames, TheLongestMessageIsNone) {
  HostFrames frames;
  taken(frames, bytes({0, 0, 16, 0, 4, 0}));
  EXPECT_FALSE(frames.isFaulty());
}

TEST(HostFrames, TakesNothingOfAFileThatIsNotAdmitted) {
  const Bytes file = frameOf(9, bytes({1, 2, 3}));
  HostFrames frames;
  ByteView left(file);
  EXPECT_FALSE(frames.take(left).has_value());
  EXPECT_TRUE(frames.awaitsAdmission());
  EXPECT_EQ(left.size(), 3u);
  EXPECT_FALSE(frames.take(left).has_value());
  frames.admitFile();
  EXPECT_TRUE(frames.isInFile());
  const auto whole = frames.take(left);
  ASSERT_TRUE(whole.has_value());
  EXPECT_EQ(whole->bytes, file);
}

}  // namespace
}  // namespace zel::test
