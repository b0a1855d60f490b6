#include "gateway/outputs/gateway_outputs.h"

#include <gmock/gmock.h>

#include "tests/gateway/outputs/scripted_streams.h"
#include "tests/platform/linux/temporary_folder.h"

namespace zel::gateway {
namespace {

using ::testing::ElementsAre;

class GatewayOutputsTest : public ::testing::Test {
 protected:
  test::TemporaryFolder folder_;
  ScriptedWorld world_;
  std::vector<std::string> made_;
  GatewayOutputs outputs_{{.folder = folder_.path()}, [this](const std::string& serialNumber) {
                            made_.push_back(serialNumber);
                            return std::make_shared<ScriptedStreams>(world_);
                          }};
};

TEST_F(GatewayOutputsTest, EachCameraHasItsOwnAndTheyShareTheFolder) {
  ASSERT_TRUE(outputs_.of("E1")->begin({"a.mp4", std::nullopt}));
  EXPECT_FALSE(outputs_.of("E2")->begin({"a.mp4", std::nullopt}));
  ASSERT_TRUE(outputs_.of("E2")->begin({"b.mp4", std::nullopt}));
  EXPECT_EQ(outputs_.list("E1").at(0).address, "a.mp4");
  EXPECT_EQ(outputs_.list("E2").at(0).address, "b.mp4");
  EXPECT_THAT(made_, ElementsAre("E1", "E2"));
}

TEST_F(GatewayOutputsTest, AskingForOutputsMakesNone) {
  EXPECT_TRUE(outputs_.list("E1").empty());
  EXPECT_TRUE(made_.empty());
}

}  // namespace
}  // namespace zel::gateway
