#include "gateway/feed/stream_description.h"

#include <gmock/gmock.h>

#include "tests/gateway/feed/feed_bytes.h"
#include "tests/outputs/test_film.h"

namespace zel::gateway::test {
namespace {

TEST(StreamDescriptionTest, JsonSaysAllThatADecoderNeeds) {
  const auto description = describe(smallHeaders(), 25);
  ASSERT_TRUE(description);
  EXPECT_EQ(describeAsJson(*description, 1'700'000'000'000'000),
            R"({"video":{"codec":"avc1.42C01F","width":64,"height":32,"rate":25.0,)"
            R"("colour":{"fullRange":true,"primaries":6,"transfer":6,"matrix":6}},)"
            R"("audio":{"codec":"mp4a.40.2","sampleRate":48000,"channels":1,"config":"1188"},)"
            R"("epoch":1700000000000000})");
}

TEST(StreamDescriptionTest, AStreamWithoutSoundSaysSo) {
  StreamHeaders headers = smallHeaders();
  headers.audioConfig = {};
  EXPECT_THAT(describeAsJson(*describe(headers, 30), 0), ::testing::HasSubstr(R"("audio":null)"));
}

TEST(StreamDescriptionTest, ParameterSetsThatCannotBeOnesDescribeNothing) {
  StreamHeaders headers = smallHeaders();
  headers.sps = ZELData(Bytes{0x67, 0x42, 0xC0});
  EXPECT_FALSE(describe(headers, 30));
  headers = smallHeaders();
  headers.pps = {};
  EXPECT_FALSE(describe(headers, 30));
  headers = smallHeaders();
  headers.sps = ZELData(Bytes(0x10000, 0x67));  // MP4 states its length in two bytes
  EXPECT_FALSE(describe(headers, 30));
}

TEST(StreamDescriptionTest, AKeyPictureWithSetsOfItsOwnChangesTheSize) {
  const TestFilm small(1), large(1, 128, 96);
  const auto key = withParameterSets(large.packets.front().data, *describe(large.headers, 30));
  const auto changed = describeFrom(small.headers, 30, key.bytes());
  ASSERT_TRUE(changed);
  EXPECT_EQ(changed->headers.width, 128);
  EXPECT_EQ(changed->headers.height, 96);
  EXPECT_EQ(changed->headers.sps, large.headers.sps);
  EXPECT_EQ(describeFrom(small.headers, 30, small.packets.front().data.bytes()), describe(small.headers, 30));
}

TEST(StreamDescriptionTest, SetsThatDoNotFitThePictureDescribeNothing) {
  const TestFilm film(1);
  Bytes key = {0, 0, 0, 1, 0x67, 0x42, 0, 0, 0, 1, 0x68, 0xCE};
  const auto picture = film.packets.front().data.bytes();
  key.insert(key.end(), picture.begin(), picture.end());
  EXPECT_FALSE(describeFrom(film.headers, 30, key));
}

TEST(StreamDescriptionTest, AKeyPictureGetsItsParameterSetsOnce) {
  const auto description = *describe(smallHeaders(), 30);
  const ZELData with = withParameterSets(picture(0, true, 2).data, description);
  EXPECT_EQ(with, ZELData(Bytes{0, 0, 0, 1, 0x67, 0x42, 0xC0, 0x1F, 0xAA,  // SPS
                                0, 0, 0, 1, 0x68, 0xCE,                    // PPS
                                0, 0, 0, 1, 0x65, 0x77}));
  EXPECT_EQ(withParameterSets(with, description), with);
}

}  // namespace
}  // namespace zel::gateway::test
