// Calls by an operation's name.

#include <ZELTarkaSDK/Camera.h>
#include <gmock/gmock.h>

#include "tests/facade/bus_camera.h"

namespace zel::test {
namespace {

using Reason = CameraError::Reason;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

class OperationCallTest : public BusCamera {
 protected:
  static constexpr std::uint16_t kBattery = 0x4001, kCreateTextFile = 0x402D;

  Result<OperationReply> call(Camera& camera, std::string_view name, const std::vector<Operation::Value>& given = {}) {
    return camera.call(*findOperation(name), given).get();
  }
};

TEST_F(OperationCallTest, GivesTheRepliesValues) {
  attach();
  Camera camera = opened();
  const auto reply = call(camera, "msgReqBatteryWithRebackBlock");
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->error, std::nullopt);
  EXPECT_THAT(reply->values, ElementsAre(Operation::Value(std::uint8_t{1}), Operation::Value(std::uint8_t{100})));
}

TEST_F(OperationCallTest, TakesItsArguments) {
  attach();
  Camera camera = opened();
  EXPECT_TRUE(call(camera, "msgReqSetTimelapseEVBias", {std::int16_t{-3}}));
  EXPECT_EQ(*camera.timelapseExposureBias().get(), -3);
}

TEST_F(OperationCallTest, GivesARefusalWithWhatItCarries) {
  simulator::Faults faults;
  faults.refuse = {kCreateTextFile};
  attach(faults);
  Camera camera = opened();
  const auto reply = call(camera, "msgReqCreateTxtFile",
                          {std::string("a.txt"), std::int32_t{1}, ZELData(std::vector<std::uint8_t>{'x'})});
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->error, zelOSStatusError(kZELErrorRefused));
  EXPECT_EQ(reply->values.size(), 1u);
}

TEST_F(OperationCallTest, WaitsInLineWithTheRequestThatSendsTheSame) {
  simulator::Faults faults;
  faults.lateReply = {{kBattery, 300}};
  attach(faults);
  Camera camera = opened();
  auto first = camera.battery();
  auto second = camera.call(*findOperation("queryCameraBattery"));
  EXPECT_TRUE(first.get()) << "the second one took its answer";
  EXPECT_TRUE(second.get());
}

TEST_F(OperationCallTest, EndsInTime) {
  simulator::Faults faults;
  faults.noReply = {kBattery};
  attach(faults);
  Camera camera = opened();
  const auto reply =
      camera.call(*findOperation("msgReqBatteryWithRebackBlock"), {}, {.timeLimit = milliseconds(20)}).get();
  ASSERT_FALSE(reply);
  EXPECT_EQ(reply.error().reason, Reason::timeLimit);
}

TEST_F(OperationCallTest, WithoutAReplyItIsDoneWhenItsBytesAreWritten) {
  attach();
  Camera camera = opened();
  const auto before = camera.statistics().bytesWritten;
  const auto reply = call(camera, "msgReqUpdateGps");
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->error, std::nullopt);
  EXPECT_GE(camera.statistics().bytesWritten - before, 32u);  // a header of 6, the code's 2, three numbers of 8
}

TEST_F(OperationCallTest, WithoutAReplyAndALinkItTellsThatTheCameraIsLost) {
  attach();
  Camera camera = opened();
  simulated().unplug();
  auto link = camera.linkChanges();
  while (camera.linkStatus() != LinkStatus::closed && link.next().get()) {
  }
  const auto reply = call(camera, "msgReqUpdateGps");
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->error, zelOSStatusError(kZELErrorNotConnected));
  EXPECT_THAT(reply->values, IsEmpty());
}

TEST_F(OperationCallTest, ThatDoesNothingIsDoneAtOnce) {
  attach();
  Camera camera = opened();
  EXPECT_TRUE(call(camera, "msgCmdShutterHDRWithGps"));
}

}  // namespace
}  // namespace zel::test
