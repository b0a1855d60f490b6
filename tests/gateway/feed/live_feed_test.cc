#include "gateway/feed/live_feed.h"

#include <gmock/gmock.h>

#include "tests/gateway/feed/feed_bytes.h"
#include "tests/outputs/test_film.h"

namespace zel::gateway::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using TimePoint = std::chrono::steady_clock::time_point;

class LiveFeedTest : public ::testing::Test {
 protected:
  static LiveFeed::Options options() {
    return {.unixTime = [](TimePoint moment) {
      return std::chrono::duration_cast<std::chrono::microseconds>(moment.time_since_epoch()).count();
    }};
  }
  // A picture that arrived at that many microseconds.
  static MediaPacket arrived(MediaPacket packet, std::int64_t when) {
    packet.arrival = TimePoint(std::chrono::microseconds(when));
    return packet;
  }
  static std::vector<std::int64_t> timesOf(const std::vector<Record>& records) {
    std::vector<std::int64_t> times;
    for (const Record& record : records) times.push_back(record.time);
    return times;
  }
  static std::vector<std::int64_t> timesIn(Viewer& units) { return timesOf(recordsIn(readAll(units))); }
  std::shared_ptr<Viewer> join(FeedForm form) {
    return feed_.join(form, [] {});
  }

  LiveFeed feed_{options()};
};

TEST_F(LiveFeedTest, WhoJoinsGetsEverythingSinceTheLastKeyPictureAtOnce) {
  feed_.onHeaders(smallHeaders());
  for (const auto& packet : {picture(0, true), picture(1), picture(10, true), sound(9), picture(11)})
    feed_.onPacket(packet);
  const auto units = join(FeedForm::units);
  EXPECT_THAT(timesIn(*units), ElementsAre(10, 10, 9, 11));
  const auto mp4 = join(FeedForm::mp4);
  EXPECT_THAT(namesOfBoxes(readAll(*mp4)), ElementsAre("ftyp", "moov", "moof", "mdat", "moof", "mdat", "moof", "mdat"));
  feed_.onPacket(picture(12));
  EXPECT_THAT(timesIn(*units), ElementsAre(12));
  EXPECT_EQ(fragmentsIn(readAll(*mp4)).at(0).time, 12U);
}

TEST_F(LiveFeedTest, SoundBeforeTheFirstPictureIsNotHeard) {
  const auto units = join(FeedForm::units);
  feed_.onPacket(picture(0, true));  // before any headers
  feed_.onHeaders(smallHeaders());
  for (const auto& packet : {sound(0), picture(1), sound(2), picture(3, true), sound(4)}) feed_.onPacket(packet);
  EXPECT_THAT(timesIn(*units), ElementsAre(3, 3, 4));
}

TEST_F(LiveFeedTest, ViewersShareTheBytesOfAPicture) {
  feed_.onHeaders(smallHeaders());
  std::vector<std::shared_ptr<Viewer>> viewers;
  for (int one = 0; one < 16; ++one) viewers.push_back(join(one % 2 == 0 ? FeedForm::mp4 : FeedForm::units));
  feed_.onPacket(picture(0, true));
  const MediaPacket large = picture(1, false, 1'000'000);
  const long before = static_cast<long>(large.data.bytes().size());
  feed_.onPacket(large);
  std::vector<Bytes> read;
  for (const auto& viewer : viewers) read.push_back(readAll(*viewer, 100'000));
  for (std::size_t one = 2; one < read.size(); ++one) EXPECT_EQ(read[one], read[one - 2]);
  EXPECT_GT(static_cast<long>(read[0].size()), before);
  EXPECT_EQ(feed_.statistics().mp4Viewers, 8U);
  EXPECT_EQ(feed_.statistics().unitsViewers, 8U);
  viewers.clear();
  EXPECT_EQ(feed_.statistics().mp4Viewers, 0U);
}

TEST_F(LiveFeedTest, ASlowViewerSkipsAndDelaysNobody) {
  LiveFeed::Options small = options();
  small.mostGroupBytes = 4'000;
  small.mostViewerBytes = 8'000;
  LiveFeed feed(small);
  feed.onHeaders(smallHeaders());
  feed.onPacket(picture(0, true));
  const auto slow = feed.join(FeedForm::units, [] {}), fast = feed.join(FeedForm::units, [] {});
  std::size_t seen = 0;
  for (std::int64_t time = 1; time < 1'000; ++time) {
    feed.onPacket(picture(time, time % 100 == 0, 1'000));
    seen += recordsIn(readAll(*fast)).size();
  }
  EXPECT_EQ(seen, 1'001U);  // the description, and all pictures
  EXPECT_EQ(fast->skipped(), 0U);
  const auto records = recordsIn(readAll(*slow));
  EXPECT_LE(records.size(), 8U);  // 8,000 bytes
  EXPECT_EQ(feed.statistics().skipped, slow->skipped());
  EXPECT_GE(slow->skipped(), 990U);
}

TEST_F(LiveFeedTest, OfAGroupThatIsTooLongNothingIsKept) {
  LiveFeed::Options small = options();
  small.mostGroupBytes = 10'000;
  LiveFeed feed(small);
  feed.onHeaders(smallHeaders());
  const auto early = feed.join(FeedForm::units, [] {});
  feed.onPacket(picture(0, true));
  for (std::int64_t time = 1; time < 20; ++time) feed.onPacket(picture(time, false, 1'000));
  const auto late = feed.join(FeedForm::units, [] {});
  EXPECT_EQ(timesIn(*early).size(), 21U);
  EXPECT_TRUE(timesIn(*late).empty());
  feed.onPacket(picture(20, true));
  feed.onPacket(picture(21));
  EXPECT_THAT(timesIn(*late), ElementsAre(20, 20, 21));
  EXPECT_EQ(late->skipped(), 0U);
}

TEST_F(LiveFeedTest, TheEpochIsWhenThePictureOfTimeZeroWouldHaveArrived) {
  feed_.onHeaders(smallHeaders());
  feed_.onPacket(arrived(picture(0, true), 5'000'000));
  feed_.onPacket(arrived(picture(40'000), 5'042'000));
  feed_.onPacket(arrived(picture(80'000, true), 5'084'000));
  // 5,000,000, then half of 2,000 later, then a third of the 3,000 that are left
  EXPECT_THAT(recordsIn(readAll(*join(FeedForm::units))).at(0).text(), HasSubstr(R"("epoch":5002000)"));
}

TEST_F(LiveFeedTest, AnotherConnectionIsToldWithAnotherEpoch) {
  feed_.onHeaders(smallHeaders());
  const auto units = join(FeedForm::units), mp4 = join(FeedForm::mp4);
  feed_.onPacket(arrived(picture(0, true), 5'000'000));
  MediaPacket again = arrived(picture(40'000, true), 65'040'000);
  again.discontinuity = true;
  feed_.onPacket(again);
  MediaPacket heardAgain = sound(40'000);
  heardAgain.discontinuity = true;  // of the same connection, which is told once
  feed_.onPacket(heardAgain);
  feed_.onPacket(arrived(picture(80'000, true), 65'080'000));
  const auto records = recordsIn(readAll(*units));
  EXPECT_THAT(timesOf(records), ElementsAre(0, 0, 40'000, 40'000, 40'000, 80'000));
  EXPECT_THAT(records[2].text(), HasSubstr(R"("epoch":65000000)"));
  EXPECT_EQ(records[3].flags, 3);
  EXPECT_THAT(namesOfBoxes(readAll(*mp4)),
              ElementsAre("ftyp", "moov", "moof", "mdat", "moof", "mdat", "moof", "mdat", "moof", "mdat"));
}

TEST_F(LiveFeedTest, AnotherStreamGoesOnBehindTheOneBeforeForWhoStayed) {
  feed_.onHeaders(smallHeaders());
  const auto units = join(FeedForm::units);
  for (const auto& packet : {picture(0, true), picture(33'000)}) feed_.onPacket(packet);
  StreamHeaders others = smallHeaders();
  others.audioConfig = {};
  feed_.onHeaders(others);
  for (const auto& packet : {picture(0), picture(33'000, true), sound(33'000)}) feed_.onPacket(packet);
  const auto records = recordsIn(readAll(*units));
  // The first picture of the second stream is no key picture, and its sound has no description.
  EXPECT_THAT(timesOf(records), ElementsAre(0, 0, 33'000, 106'000, 106'000, 106'000));
  EXPECT_THAT(records[3].text(), HasSubstr(R"("audio":null)"));
}

TEST_F(LiveFeedTest, AnotherResolutionBringsAnotherBeginningInBothForms) {
  const TestFilm small(1), large(1, 128, 96);
  feed_.onHeaders(small.headers);
  const auto units = join(FeedForm::units), mp4 = join(FeedForm::mp4);
  feed_.onPacket(small.packets.front());
  MediaPacket other = large.packets.front();
  other.time = 100'000;
  other.data = withParameterSets(other.data, *describe(large.headers, 30));
  other.discontinuity = true;
  feed_.onPacket(other);
  MediaPacket back = small.packets.front();  // with the first sets again, which are not repeated in band
  back.time = 200'000;
  feed_.onPacket(back);
  const auto records = recordsIn(readAll(*units));
  ASSERT_EQ(records.size(), 6U);
  EXPECT_THAT(records[0].text(), HasSubstr(R"("width":64,"height":32)"));
  EXPECT_THAT(records[2].text(), HasSubstr(R"("width":128,"height":96)"));
  EXPECT_THAT(records[4].text(), HasSubstr(R"("width":64,"height":32)"));
  EXPECT_THAT(namesOfBoxes(readAll(*mp4)), ElementsAre("ftyp", "moov", "moof", "mdat", "ftyp", "moov", "moof", "mdat",
                                                       "ftyp", "moov", "moof", "mdat"));
}

TEST_F(LiveFeedTest, APictureThatCannotBeDescribedStopsTheStreamUpToTheNextKeyPicture) {
  const TestFilm film(1);
  feed_.onHeaders(film.headers);
  const auto units = join(FeedForm::units);
  MediaPacket broken = film.packets.front();
  Bytes bytes = {0, 0, 0, 1, 0x67, 0x42, 0, 0, 0, 1, 0x68, 0xCE};
  bytes.insert(bytes.end(), broken.data.bytes().begin(), broken.data.bytes().end());
  broken.data = ZELData(bytes);
  feed_.onPacket(broken);
  feed_.onPacket(picture(50'000));
  EXPECT_TRUE(readAll(*units).empty());
  MediaPacket whole = film.packets.front();
  whole.time = 100'000;
  feed_.onPacket(whole);
  EXPECT_THAT(timesIn(*units), ElementsAre(100'000, 100'000));
}

TEST_F(LiveFeedTest, TimesThatJumpMakeNoTrackGoBack) {
  feed_.onHeaders(smallHeaders());
  const auto mp4 = join(FeedForm::mp4);
  std::int64_t now = 10'000'000;
  for (int one = 0; one < 200; ++one, now += 33'000) {
    if (one == 50) now -= 7'000'000;
    if (one == 100) now += 3'600'000'000;
    if (one == 150) now -= 400'000;
    feed_.onPacket(picture(now, one % 10 == 0));
    feed_.onPacket(sound(now + 5'000));
  }
  std::map<std::uint64_t, std::uint64_t> newest;
  const auto fragments = fragmentsIn(readAll(*mp4));
  ASSERT_EQ(fragments.size(), 400U);
  for (const Fragment& one : fragments) {
    if (newest.contains(one.track)) {
      EXPECT_GT(one.time, newest[one.track]);
    }
    newest[one.track] = one.time;
    EXPECT_GT(one.duration, 0U);
    EXPECT_LT(one.duration, 100'000U);
  }
  for (std::size_t one = 1; one < fragments.size(); ++one)
    EXPECT_GT(fragments[one].sequence, fragments[one - 1].sequence);
}

TEST_F(LiveFeedTest, DurationsAreThoseOfTheNominalRate) {
  for (const double rate : {15.0, 20.0, 25.0, 30.0}) {
    LiveFeed::Options options;
    options.rate = rate;
    LiveFeed feed(options);
    feed.onHeaders(smallHeaders());
    feed.onPacket(picture(0, true));
    const auto fragments = fragmentsIn(readAll(*feed.join(FeedForm::mp4, [] {})));
    EXPECT_EQ(fragments.at(0).duration, static_cast<std::uint64_t>(1e6 / rate + 0.5)) << rate;
  }
}

TEST_F(LiveFeedTest, WhoeverCallsReadyMayAskTheFeed) {
  feed_.onHeaders(smallHeaders());
  std::size_t viewers = 0;
  const auto mp4 = feed_.join(FeedForm::mp4, [&] { viewers = feed_.statistics().mp4Viewers; });
  EXPECT_TRUE(readAll(*mp4).empty());
  feed_.onPacket(picture(0, true));
  EXPECT_EQ(viewers, 1U);
}

TEST_F(LiveFeedTest, TheEndIsToldToAllAndToWhoComesLater) {
  feed_.onHeaders(smallHeaders());
  feed_.onPacket(picture(0, true));
  const auto early = join(FeedForm::units);
  feed_.end();
  feed_.onPacket(picture(1));
  const auto late = join(FeedForm::units);
  for (const auto& one : {early, late}) {
    EXPECT_THAT(timesIn(*one), ElementsAre(0, 0));
    EXPECT_TRUE(one->isEnded());
  }
}

TEST_F(LiveFeedTest, ManyReadersAndOneWriterLoseNothing) {
  feed_.onHeaders(smallHeaders());
  std::vector<std::thread> readers;
  std::vector<std::size_t> seen(8);
  for (std::size_t one = 0; one < seen.size(); ++one) {
    auto woken = std::make_shared<std::counting_semaphore<>>(0);
    auto viewer = feed_.join(FeedForm::units, [woken] { woken->release(); });
    readers.emplace_back([viewer, woken, &seen, one] {
      Bytes all, some(64);
      while (!viewer->isEnded()) {
        const std::size_t count = viewer->read(some);
        all.insert(all.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(count));
        if (count == 0 && !viewer->isEnded()) woken->acquire();
      }
      seen[one] = recordsIn(all).size();
    });
  }
  for (std::int64_t time = 0; time < 2'000; ++time) feed_.onPacket(picture(time, time % 30 == 0));
  feed_.end();
  for (std::thread& reader : readers) reader.join();
  EXPECT_THAT(seen, ::testing::Each(2'001U));
}

}  // namespace
}  // namespace zel::gateway::test
