#include "command/sync_data_request.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/transport/simulated_camera.h"

namespace zel::test {
namespace {

using testing::IsEmpty;

class SyncDataRequestTest : public SimulatedCameraTest {
 protected:
  void request() {
    syncData.msgReqSendSyncData(ZELData(kMarker), [this](const std::optional<ZELError>& error) {
      ++completed;
      failed += error.has_value() ? 1 : 0;
    });
  }

  SyncDataRequest syncData{stack.parser(), stack.accessory(), host.ports().queues.mainQueue()};
  int completed = 0;
  int failed = 0;
};

const Bytes kSyncDataReply = bytes({9, 0, 0, 0, 4, 0, 0x2E, 0xC0, 0});

TEST_F(SyncDataRequestTest, IsSentAlthoughNoFrameHasComeYet) {
  open();
  request();
  host.runUntilIdle();
  EXPECT_EQ(link().written(), join(bytes({18, 0, 0, 0,   // length
                                          4, 0,          // data type: message
                                          0x2E, 0x40}),  // code
                                   kMarker));
}

TEST_F(SyncDataRequestTest, SucceedsWithAnyReplyOnTheMainQueue) {
  openAndSynchronise();
  request();
  send(kSyncDataReply);
  EXPECT_EQ(completed, 1);
  EXPECT_EQ(failed, 0);
}

TEST_F(SyncDataRequestTest, IsCompletedOnceByTwoReplies) {
  openAndSynchronise();
  request();
  send(join(kSyncDataReply, kSyncDataReply));
  EXPECT_EQ(completed, 1);
}

TEST_F(SyncDataRequestTest, TakesThePlaceOfAnEarlierOne) {
  openAndSynchronise();
  request();
  request();
  send(join(kSyncDataReply, kSyncDataReply));
  EXPECT_EQ(completed, 1);
}

TEST_F(SyncDataRequestTest, WritesNothingWhileClosed) {
  attach();
  request();
  accessory().openCamera();
  host.runUntilIdle();
  EXPECT_THAT(link().written(), IsEmpty());
}

}  // namespace
}  // namespace zel::test
