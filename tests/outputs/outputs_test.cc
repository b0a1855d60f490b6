#include <ZELTarkaSDK/Outputs.h>

#include <gmock/gmock.h>

#include <string>

#include "tests/outputs/read_back.h"
#include "tests/outputs/test_film.h"
#include "tests/platform/linux/temporary_folder.h"

namespace zel {
namespace {

using testing::SizeIs;

class OutputsTest : public testing::Test {
 protected:
  OutputsTest() { av_log_set_level(AV_LOG_QUIET); }

  OutputAddress file(const std::string& name) const { return *parseOutputAddress(folder.file(name)); }

  // The film's packets from one picture up to another, at their times.
  void send(Outputs& outputs, int from, int to) const {
    for (const MediaPacket& packet : film.packets)
      if (packet.time >= from * kPicture && packet.time < to * kPicture) outputs.onPacket(packet);
  }

  static constexpr std::int64_t kPicture = 1'000'000 / TestFilm::kRate;
  const test::TemporaryFolder folder;
  const TestFilm film{30};  // a key picture a second, 10 pictures
};

TEST_F(OutputsTest, OneThatIsAddedWhileTheStreamRunsBeginsWithAKeyPictureAtTimeZero) {
  Outputs outputs;
  outputs.add(file("whole.mp4"));
  outputs.onHeaders(film.headers);
  send(outputs, 0, 5);
  outputs.add(file("late.mp4"));
  send(outputs, 5, 30);
  outputs.finish();
  EXPECT_EQ(readBack(folder.file("whole.mp4")).pictures, 30);
  const auto late = readBack(folder.file("late.mp4"));
  EXPECT_EQ(late.pictures, 20);  // from the next second on
  EXPECT_NEAR(late.firstPicture, 0, 0.001);
  EXPECT_NEAR(late.pictureTimes.back(), 1.9, 0.001);
}

TEST_F(OutputsTest, OneThatIsRemovedIsWholeAndTheOthersGoOn) {
  Outputs outputs;
  const int removed = outputs.add(file("removed.mp4")), stays = outputs.add(file("stays.mp4"));
  outputs.onHeaders(film.headers);
  send(outputs, 0, 15);
  const auto report = outputs.remove(removed);
  ASSERT_TRUE(report);
  EXPECT_EQ(report->id, removed);
  EXPECT_EQ(report->state, OutputState::finished);
  EXPECT_EQ(report->pictures, 15u);
  send(outputs, 15, 30);
  outputs.finish();
  EXPECT_EQ(readBack(folder.file("removed.mp4")).pictures, 15);
  EXPECT_EQ(readBack(folder.file("stays.mp4")).pictures, 30);
  ASSERT_THAT(outputs.reports(), SizeIs(1));
  EXPECT_EQ(outputs.reports()[0].id, stays);
  EXPECT_FALSE(outputs.remove(removed));
}

TEST_F(OutputsTest, HaveAllFailedWhereThereAreSomeAndNoneIsLeft) {
  Outputs outputs;
  EXPECT_FALSE(outputs.haveAllFailed());
  outputs.add(file("no/such/folder.mp4"));
  outputs.onHeaders(film.headers);
  outputs.finish();
  EXPECT_TRUE(outputs.haveAllFailed());
  EXPECT_EQ(outputs.reports()[0].state, OutputState::failed);
  EXPECT_TRUE(outputs.reports()[0].fault);
}

TEST_F(OutputsTest, NothingIsAddedOnceTheyAreFinished) {
  Outputs outputs;
  outputs.finish();
  EXPECT_EQ(outputs.add(file("a.mp4")), 0);
  EXPECT_THAT(outputs.reports(), SizeIs(0));
}

}  // namespace
}  // namespace zel
