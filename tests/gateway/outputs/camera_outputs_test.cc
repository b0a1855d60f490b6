#include "gateway/outputs/camera_outputs.h"

#include <gmock/gmock.h>

#include "tests/gateway/outputs/scripted_streams.h"
#include "tests/platform/linux/temporary_folder.h"

namespace zel::gateway {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class CameraOutputsTest : public ::testing::Test {
 protected:
  Result<OutputStatus> begin(const std::string& address, std::optional<StitchedSize> stitched = std::nullopt) {
    return outputs_.begin({address, stitched});
  }
  std::vector<int> ids() const {
    std::vector<int> all;
    for (const OutputStatus& one : outputs_.list()) all.push_back(one.id);
    return all;
  }

  test::TemporaryFolder folder_;
  ScriptedWorld world_;
  CameraOutputs outputs_{{.folder = folder_.path(), .most = 4, .mostStitched = 2},
                         std::make_shared<ScriptedStreams>(world_)};
};

constexpr StitchedSize kSmall{480, 240, 500'000}, kLarge{1920, 960, 8'000'000}, kThird{960, 480, 1'000'000};

TEST_F(CameraOutputsTest, OutputsOfOneKindShareAStreamThatEndsWithTheLast) {
  const auto first = begin("a.mp4"), second = begin("b.ts");
  EXPECT_THAT(world_.begun, ElementsAre(std::nullopt));
  EXPECT_THAT(ids(), ElementsAre(first->id, second->id));
  EXPECT_EQ(outputs_.end(first->id)->report.state, OutputState::finished);
  EXPECT_EQ(world_.running, 1);
  EXPECT_TRUE(outputs_.end(second->id));
  EXPECT_EQ(world_.running, 0);
  EXPECT_TRUE(outputs_.list().empty());
}

TEST_F(CameraOutputsTest, StitchedOnesOfOneSizeShareAndOthersDoNot) {
  ASSERT_TRUE(begin("a.mp4", kSmall));
  ASSERT_TRUE(begin("b.mp4", kSmall));
  ASSERT_TRUE(begin("c.mp4", kLarge));
  ASSERT_TRUE(begin("d.mp4"));
  EXPECT_THAT(world_.begun, ElementsAre(kSmall, kLarge, std::nullopt));
}

TEST_F(CameraOutputsTest, AnotherBitrateOfASizeAndAThirdSizeAreRefused) {
  ASSERT_TRUE(begin("a.mp4", kSmall));
  EXPECT_THAT(begin("b.mp4", StitchedSize{480, 240, 600'000}).error().message, HasSubstr("at 500000 bits a second"));
  ASSERT_TRUE(begin("b.mp4", kLarge));
  EXPECT_THAT(begin("c.mp4", kThird).error().message, HasSubstr("2 sizes are stitched already"));
  EXPECT_TRUE(begin("c.mp4", kSmall));
}

TEST_F(CameraOutputsTest, TheirNumberIsBounded) {
  for (const char* name : {"a.ts", "b.ts", "c.ts", "d.ts"}) ASSERT_TRUE(begin(name)) << name;
  const auto refused = begin("e.ts");
  EXPECT_THAT(refused.error().message, HasSubstr("there are 4 outputs already"));
  ASSERT_TRUE(outputs_.end(ids().front()));
  EXPECT_TRUE(begin("e.ts"));
}

TEST_F(CameraOutputsTest, ARefusedAddressBeginsNoStream) {
  EXPECT_FALSE(begin("../a.mp4"));
  EXPECT_TRUE(world_.begun.empty());
  EXPECT_FALSE(outputs_.end(1));
}

TEST_F(CameraOutputsTest, WhatAStreamDiedOfIsTheFaultOfItsOutputs) {
  const auto first = begin("a.mp4");
  world_.failure = "failed to open encoder";
  EXPECT_EQ(outputs_.list().at(0).report.fault, "failed to open encoder");
  ASSERT_TRUE(begin("b.mp4"));  // in a stream of its own, since the first cannot go on
  EXPECT_EQ(world_.begun.size(), 2U);
  EXPECT_NE(first->id, ids().back());
}

TEST_F(CameraOutputsTest, ANumberIsNeverUsedAgain) {
  const auto first = begin("a.mp4");
  ASSERT_TRUE(outputs_.end(first->id));
  EXPECT_NE(begin("b.mp4")->id, first->id);
}

}  // namespace
}  // namespace zel::gateway
