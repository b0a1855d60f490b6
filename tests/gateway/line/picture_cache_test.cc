#include "gateway/line/picture_cache.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/gateway/line/line_test.h"

namespace zel::test {
namespace {

using gateway::MediaItem;
using gateway::PictureCache;
using gateway::SharedBytes;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PictureCacheTest : public ::testing::Test {
 protected:
  bool video(const Bytes& payload) {
    MediaItem item{MediaItem::Kind::video, SharedBytes::frame(FrameType::previewVideo, payload)};
    return cache_.add(item);
  }
  void time(int flag, std::uint64_t value) {
    MediaItem item{flag == 0 ? MediaItem::Kind::videoTime : MediaItem::Kind::audioTime,
                   SharedBytes::copyOf(timeFrame(flag, value))};
    cache_.add(item);
  }
  std::vector<Bytes> kept() const {
    std::vector<Bytes> all;
    for (const MediaItem& item : cache_.items()) all.emplace_back(item.frame.view().begin(), item.frame.view().end());
    return all;
  }
  Bytes keptVideo() const {
    Bytes all;
    for (const MediaItem& item : cache_.items()) {
      const ByteView payload = item.frame.payload();
      if (item.kind == MediaItem::Kind::video) all.insert(all.end(), payload.begin(), payload.end());
    }
    return all;
  }

  PictureCache cache_;
};

const Bytes kKey = join(kSps, kPps, kIdr);

TEST_F(PictureCacheTest, KeepsNothingBeforeAKeyPicture) {
  EXPECT_FALSE(video(kSlice));
  time(0, 5);
  EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(PictureCacheTest, BeginsWithTheTimesAndTheKeyPicture) {
  time(1, 4);
  time(0, 5);
  EXPECT_TRUE(video(kKey));
  time(0, 6);
  EXPECT_FALSE(video(kSlice));
  EXPECT_THAT(kept(),
              ElementsAre(timeFrame(1, 4), timeFrame(0, 5), frameOf(1, kKey), timeFrame(0, 6), frameOf(1, kSlice)));
}

TEST_F(PictureCacheTest, BeginsAgainWithTheNextKeyPicture) {
  video(kKey);
  video(kSlice);
  EXPECT_TRUE(video(kKey));
  EXPECT_THAT(kept(), ElementsAre(frameOf(1, kKey)));
}

TEST_F(PictureCacheTest, TheSlicesOfAKeyPictureAreOne) {
  const Bytes further = unit(0x65, 0x20);  // its first bit is not set: not the first slice
  EXPECT_TRUE(video(join(kKey, further)));
  EXPECT_FALSE(video(further));
  EXPECT_THAT(kept(), ElementsAre(frameOf(1, join(kKey, further)), frameOf(1, further)));
}

TEST_F(PictureCacheTest, BeginsInTheMiddleOfAFrame) {
  EXPECT_TRUE(video(join(kSlice, kKey)));
  EXPECT_THAT(kept(), ElementsAre(frameOf(1, kKey)));
}

TEST_F(PictureCacheTest, ParameterSetsInAFrameOfTheirOwnBeginIt) {
  video(kKey);
  video(join(kSps, kPps));
  time(0, 9);
  EXPECT_TRUE(video(kIdr));
  EXPECT_EQ(keptVideo(), kKey);
}

TEST_F(PictureCacheTest, AKeyPictureWithoutSetsGetsTheLastOnes) {
  video(kKey);
  EXPECT_TRUE(video(kIdr));
  EXPECT_THAT(kept(), ElementsAre(frameOf(1, join(kSps, kPps)), frameOf(1, kIdr)));
}

TEST_F(PictureCacheTest, SetsBeforeAnotherPictureAreNoKeyPicture) {
  video(kKey);
  EXPECT_FALSE(video(join(kSps, kPps, kSlice)));
  EXPECT_EQ(keptVideo(), join(kKey, kSps, kPps, kSlice));
}

// However the stream is cut, who joins gets the same bytes.
TEST_F(PictureCacheTest, FindsTheKeyPictureInAnyPieces) {
  const Bytes stream = join(kSlice, kKey, kSlice, repeated(20, 0x33), kKey, kSlice);
  const Bytes expected = join(kKey, kSlice);
  for (std::size_t size = 1; size <= stream.size(); ++size) {
    cache_.clear();
    for (std::size_t at = 0; at < stream.size(); at += size) {
      const auto from = stream.begin() + static_cast<std::ptrdiff_t>(at);
      video(Bytes(from, from + static_cast<std::ptrdiff_t>(std::min(size, stream.size() - at))));
    }
    video(repeated(6, 0x55));  // what tells the last unit
    EXPECT_EQ(keptVideo(), join(expected, repeated(6, 0x55))) << "pieces of " << size;
  }
}

TEST_F(PictureCacheTest, FindsSetsThatWereSentOnceInAnyPieces) {
  const Bytes first = join(kKey, kSlice);
  for (std::size_t size = 1; size <= first.size(); ++size) {
    cache_.clear();
    for (std::size_t at = 0; at < first.size(); at += size) {
      const auto from = first.begin() + static_cast<std::ptrdiff_t>(at);
      video(Bytes(from, from + static_cast<std::ptrdiff_t>(std::min(size, first.size() - at))));
    }
    EXPECT_TRUE(video(kIdr));
    EXPECT_EQ(keptVideo(), kKey) << "pieces of " << size;
  }
}

TEST_F(PictureCacheTest, AGroupThatIsTooLongIsNotKept) {
  video(kKey);
  for (int i = 0; i < 8; ++i) video(join(kSlice, repeated(1 << 20, 0x55)));
  EXPECT_THAT(kept(), IsEmpty());
  video(kKey);
  EXPECT_THAT(kept(), ElementsAre(frameOf(1, kKey)));
}

TEST_F(PictureCacheTest, ItsEndForgetsAll) {
  video(kKey);
  cache_.clear();
  EXPECT_THAT(kept(), IsEmpty());
  video(kIdr);
  EXPECT_THAT(kept(), ElementsAre(frameOf(1, kIdr))) << "without the sets of the preview before";
}

}  // namespace
}  // namespace zel::test
