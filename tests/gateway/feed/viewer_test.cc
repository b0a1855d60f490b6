#include "gateway/feed/viewer.h"

#include <gmock/gmock.h>

#include "tests/gateway/feed/feed_bytes.h"

namespace zel::gateway::test {
namespace {

using ::testing::ElementsAre;

class ViewerTest : public ::testing::Test {
 protected:
  std::shared_ptr<Viewer> viewer(FeedForm form, std::size_t most = 10'000) {
    return std::make_shared<Viewer>(
        form, most, [this] { ++woken_; }, counts_);
  }
  static void call(const std::function<void()>& ready) {
    if (ready) ready();
  }
  void put(Viewer& to, MediaPacket packet) {
    const std::string name = (packet.key                     ? "K"
                              : packet.track == Track::video ? "p"
                                                             : "s") +
                             std::to_string(packet.time);
    call(to.put({std::move(packet), beginning_, ZELData(Bytes(name.begin(), name.end()))}));
  }
  void changeBeginning() {
    auto other = std::make_shared<FeedBeginning>(*beginning_);
    ++other->headers, ++other->version;
    beginning_ = other;
  }
  static std::string textOf(Viewer& one) {
    const Bytes bytes = readAll(one);
    return {bytes.begin(), bytes.end()};
  }

  int woken_ = 0;
  std::shared_ptr<ViewerCounts> counts_ = std::make_shared<ViewerCounts>();
  std::shared_ptr<const FeedBeginning> beginning_ =
      std::make_shared<FeedBeginning>(FeedBeginning{1, 1, ZELData(Bytes{'I'}), ZELData(Bytes{'{', '}'})});
};

TEST_F(ViewerTest, RecordsAreLaidOutAsWorkedOutByHand) {
  const auto units = viewer(FeedForm::units);
  put(*units, picture(0x0102, true, 1));
  EXPECT_EQ(readAll(*units), (Bytes{12, 0, 0, 0, 0, 0, 2, 1, 0, 0, 0, 0, 0, 0, '{', '}',                 // description
                                    15, 0, 0, 0, 1, 1, 2, 1, 0, 0, 0, 0, 0, 0, 0,   0,   0, 1, 0x65}));  // key picture
  put(*units, sound(-1, 1));
  EXPECT_EQ(readAll(*units), (Bytes{11, 0, 0, 0, 2, 0, 255, 255, 255, 255, 255, 255, 255, 255, 0x22}));
}

TEST_F(ViewerTest, BeginsWithAKeyPictureAndItsBeginning) {
  const auto mp4 = viewer(FeedForm::mp4);
  put(*mp4, picture(1));
  put(*mp4, sound(2));
  EXPECT_EQ(textOf(*mp4), "");
  put(*mp4, picture(3, true));
  put(*mp4, sound(4));
  EXPECT_EQ(textOf(*mp4), "IK3s4");
  EXPECT_EQ(mp4->skipped(), 0U);
}

TEST_F(ViewerTest, OtherHeadersComeBeforeTheNextKeyPictureAndTheSameNeverAgain) {
  const auto mp4 = viewer(FeedForm::mp4);
  put(*mp4, picture(1, true));
  put(*mp4, picture(2, true));
  changeBeginning();
  put(*mp4, picture(3));
  put(*mp4, picture(4, true));
  EXPECT_EQ(textOf(*mp4), "IK1K2p3IK4");
}

TEST_F(ViewerTest, ReadingOneByteAtATimeGivesTheSameBytes) {
  for (const FeedForm form : {FeedForm::mp4, FeedForm::units}) {
    const auto slow = viewer(form), fast = viewer(form);
    for (const auto& one : {slow, fast}) {
      put(*one, picture(1, true, 300));
      put(*one, sound(2));
      put(*one, picture(3));
    }
    EXPECT_EQ(readAll(*slow, 1), readAll(*fast));
  }
}

TEST_F(ViewerTest, WhoIsTooSlowLosesEverythingUpToTheNextKeyPicture) {
  const auto units = viewer(FeedForm::units, 1'000);
  put(*units, picture(1, true, 100));
  Bytes some(20);
  units->read(some);  // the description, and four bytes of the key picture's record
  for (std::int64_t time = 2; time < 20; ++time) put(*units, picture(time, false, 100));
  put(*units, sound(20));
  put(*units, picture(21, true, 100));
  put(*units, picture(22, false, 100));
  Bytes rest = readAll(*units);
  rest.insert(rest.begin(), some.begin(), some.end());
  const auto records = recordsIn(rest);
  ASSERT_EQ(records.size(), 4U);
  EXPECT_EQ(records[1].time, 1);  // was begun, and so is whole
  EXPECT_EQ(records[2].time, 21);
  EXPECT_EQ(records[2].flags, 3);  // key picture, discontinuity
  EXPECT_EQ(records[3].time, 22);
  EXPECT_EQ(records[3].flags, 0);
  EXPECT_EQ(units->skipped(), 18U);
  EXPECT_EQ(counts_->skipped, 18U);
}

TEST_F(ViewerTest, OfManyTinyPiecesTheNumberIsBoundedToo) {
  const auto mp4 = viewer(FeedForm::mp4, 2'000);
  put(*mp4, picture(1, true));
  for (std::int64_t time = 2; time < 100; ++time) put(*mp4, sound(time));
  put(*mp4, picture(100, true));
  EXPECT_EQ(textOf(*mp4), "IK100");  // the description was lost with the rest, and comes again
}

TEST_F(ViewerTest, IsCalledOnceForEachTimeThatItFoundNothing) {
  const auto mp4 = viewer(FeedForm::mp4);
  put(*mp4, picture(1, true));
  EXPECT_EQ(woken_, 0);  // has not read yet
  EXPECT_EQ(textOf(*mp4), "IK1");
  put(*mp4, picture(2));
  put(*mp4, picture(3));
  EXPECT_EQ(woken_, 1);
  EXPECT_EQ(textOf(*mp4), "p2p3");
  call(mp4->end());
  EXPECT_EQ(woken_, 2);
}

TEST_F(ViewerTest, HasEndedWhenWhatWasThereIsRead) {
  const auto mp4 = viewer(FeedForm::mp4);
  put(*mp4, picture(1, true));
  call(mp4->end());
  put(*mp4, picture(2));
  EXPECT_FALSE(mp4->isEnded());
  EXPECT_EQ(textOf(*mp4), "IK1");
  EXPECT_TRUE(mp4->isEnded());
  EXPECT_EQ(counts_->bytes, 3U);
}

}  // namespace
}  // namespace zel::gateway::test
