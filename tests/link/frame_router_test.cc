#include "link/frame_router.h"

#include <gmock/gmock.h>

#include <memory>

#include "tests/link/recording_consumers.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FrameRouterTest : public testing::Test {
 protected:
  FrameRouterTest() {
    router.setAccessory(&link);
    router.setPreviewPlayer(player);
    router.setPhotoParser(std::make_shared<RecordingPhoto>(log));
    router.setUcdFile(std::make_shared<RecordingFile>(log));
  }

  Log log;
  RecordingLink link;
  std::shared_ptr<RecordingPlayer> player = std::make_shared<RecordingPlayer>(log);
  FrameStatistics statistics;
  FrameRouter router{statistics};
};

TEST_F(FrameRouterTest, HandsEachTypeToItsConsumer) {
  router.route(1, bytes({7, 9}));
  router.route(2, bytes({5}));
  router.route(3, bytes({4}));
  router.route(9, bytes({1, 2}));
  link.offset = 1000;
  router.route(8, bytes({0, 5, 0, 0, 0, 0, 0, 0, 0}));
  router.route(8, bytes({1, 6, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_THAT(log, ElementsAre("video 7 9", "audio 5", "photo 4", "file 1 2", "videoTime 1005", "audioTime 1006"));
}

TEST_F(FrameRouterTest, KnowsNoTypeThatIsNotOnTheWire) {
  for (const int type : {0, 5, 6, 10, 0xFFFF, 0x10001, -1}) router.route(type, bytes({1}));
  EXPECT_THAT(log, IsEmpty());
  EXPECT_EQ(statistics.dropped.unknownType.value(), 7u);
}

TEST_F(FrameRouterTest, CountsWhatNobodyTakes) {
  player.reset();
  router.setPhotoParser(nullptr);
  router.setUcdFile(nullptr);
  for (const int type : {1, 2, 3, 9}) router.route(type, bytes({1}));
  EXPECT_EQ(statistics.dropped.noConsumer.value(), 4u);
}

TEST_F(FrameRouterTest, GivesOneReplyToTheRecordOfItsCode) {
  router.msgParserDic().put(0x8004, CameraMsgParser(4, [this](std::uint64_t type, const auto& body, void*) {
                              log.push_back(entry(("msg " + std::to_string(type)).c_str(), body->bytes()));
                            }));
  router.route(4, bytes({0x04, 0x80, 1}));
  router.route(4, bytes({0x05, 0x80, 1}));
  EXPECT_THAT(log, ElementsAre("msg 4 1"));
  EXPECT_EQ(statistics.dropped.unregisteredCode.value(), 1u);
}

}  // namespace
}  // namespace zel::test
