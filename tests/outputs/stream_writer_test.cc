#include "outputs/stream_writer.h"

#include <gmock/gmock.h>

#include "tests/outputs/test_film.h"

namespace zel {
namespace {

using testing::ElementsAre;

struct Receiver final : EncodedStreamReceiver {
  void onHeaders(const StreamHeaders& headers) override { begun.push_back(headers); }
  void onPacket(const MediaPacket& packet) override { packets.push_back(packet); }
  std::vector<StreamHeaders> begun;
  std::vector<MediaPacket> packets;
};

class StreamWriterTest : public testing::Test {
 protected:
  // Each stream begins with a run of stitched pictures.
  class Writer : public StreamWriter {
   public:
    explicit Writer(StreamWriterTest& test, std::optional<std::int64_t> length = std::nullopt)
        : StreamWriter(test.receiver, length, [&test] { ++test.ends; }) {
      beginRun(true);
    }
  };

  void sendHeaders(StreamWriter& writer) const {
    writer.onParameterSets(film.headers.sps.bytes(), film.headers.pps.bytes());
    writer.onAudioConfig(film.headers.audioConfig.bytes());
  }
  void sendPicture(StreamWriter& writer, std::int64_t time, bool key) const {
    writer.onPicture(film.packets.at(0).data.bytes(), key, time, {});
  }

  std::vector<std::int64_t> times() const {
    std::vector<std::int64_t> all;
    for (const MediaPacket& packet : packets) all.push_back(packet.time);
    return all;
  }

  const TestFilm film{1};
  const std::vector<std::uint8_t> sound{1, 2, 3};
  Receiver receiver;
  std::vector<StreamHeaders>& begun = receiver.begun;
  std::vector<MediaPacket>& packets = receiver.packets;
  int ends = 0;
};

TEST_F(StreamWriterTest, BeginsOnceWithTheFirstKeyPicture) {
  Writer writer(*this);
  sendPicture(writer, 1000, true);  // no headers yet
  sendHeaders(writer);
  sendPicture(writer, 1033, false);
  writer.onAudio(sound, 1040);
  EXPECT_TRUE(begun.empty());
  sendPicture(writer, 1066, true);
  sendPicture(writer, 1100, true);
  ASSERT_EQ(begun.size(), 1u);
  EXPECT_EQ(begun[0].width, 64);
  EXPECT_EQ(begun[0].height, 32);
  EXPECT_TRUE(begun[0].spherical);
  EXPECT_EQ(begun[0].colour, (VideoColour{true, 6, 6, 6}));
  EXPECT_THAT(times(), ElementsAre(0, 34'000));
}

TEST_F(StreamWriterTest, IsCompleteAtItsLength) {
  Writer writer(*this, 100'000);
  sendHeaders(writer);
  sendPicture(writer, 0, true);
  writer.onAudio(sound, 99);
  writer.onAudio(sound, 121);
  sendPicture(writer, 99, false);
  EXPECT_EQ(ends, 0);
  sendPicture(writer, 100, false);
  sendPicture(writer, 133, false);
  EXPECT_EQ(ends, 1);
  EXPECT_TRUE(writer.written().complete);
  EXPECT_THAT(times(), ElementsAre(0, 99'000, 99'000));
  EXPECT_EQ(writer.written().pictures, 2u);
  EXPECT_EQ(writer.written().audioFrames, 1u);
}

// The pictures' way is longer: by the time the first one is there, the sound beside it has long come.
TEST_F(StreamWriterTest, SoundBeginsWithTheFirstPictureThoughItCameBefore) {
  Writer writer(*this);
  sendHeaders(writer);
  for (const int time : {979, 1000, 1021, 1043}) writer.onAudio(sound, time);
  sendPicture(writer, 1000, true);
  writer.onAudio(sound, 1064);
  EXPECT_THAT(times(), ElementsAre(0, 0, 21'333, 42'666, 64'000));
  EXPECT_EQ(packets[0].track, Track::video);
  EXPECT_EQ(packets[1].track, Track::audio);
  EXPECT_EQ(writer.written().audioFrames, 4u);
  EXPECT_EQ(writer.written().droppedAudio, 1u);
}

TEST_F(StreamWriterTest, AnotherRunsSoundBeginsWithItsFirstPictureToo) {
  Writer writer(*this);
  sendHeaders(writer);
  sendPicture(writer, 1000, true);
  sendPicture(writer, 1033, false);
  writer.onAudio(sound, 1020);
  writer.beginRun(true);
  writer.onAudio(sound, 5);
  writer.beginRun(true);  // and that one never got so far
  packets.clear();
  for (const int time : {2'000, 5'000, 5'021, 900'000'000}) writer.onAudio(sound, time);  // the last: of another clock
  sendPicture(writer, 5'000, true);
  EXPECT_THAT(times(), ElementsAre(66'000, 66'000, 87'333));
  EXPECT_EQ(writer.written().droppedAudio, 3u);
}

TEST_F(StreamWriterTest, MarksTheFirstPacketsOfAnotherRun) {
  Writer writer(*this);
  sendHeaders(writer);
  sendPicture(writer, 1000, true);
  writer.onAudio(sound, 1000);
  writer.beginRun(true);
  sendPicture(writer, 5000, true);
  writer.onAudio(sound, 5000);
  sendPicture(writer, 5033, false);
  writer.onAudio(sound, 5021);
  std::vector<bool> marks;
  for (const MediaPacket& packet : packets) marks.push_back(packet.discontinuity);
  EXPECT_THAT(marks, ElementsAre(false, false, true, true, false, false));
}

TEST_F(StreamWriterTest, PicturesAreSphericalWhereTheRunThatBeginsTheStreamIsStitched) {
  Writer writer(*this);
  writer.beginRun(false);
  sendHeaders(writer);
  sendPicture(writer, 0, true);
  writer.beginRun(true);
  sendPicture(writer, 100, true);
  ASSERT_EQ(begun.size(), 1u);
  EXPECT_FALSE(begun[0].spherical);
}

TEST_F(StreamWriterTest, NoMoreSoundThanAFewSecondsWaitsForAPicture) {
  Writer writer(*this);
  sendHeaders(writer);
  for (int frame = 0; frame < 300; ++frame) writer.onAudio(sound, 1000 + frame);
  EXPECT_EQ(writer.written().droppedAudio, 44u);  // 256 are kept
  sendPicture(writer, 1044, true);
  EXPECT_EQ(writer.written().audioFrames, 256u);
}

TEST_F(StreamWriterTest, SetsThatHaveChangedStandBeforeTheKeyPicture) {
  Writer writer(*this);
  sendHeaders(writer);
  sendPicture(writer, 0, true);
  const std::vector<std::uint8_t> sps = {0x67, 1}, pps = {0x68, 2};
  writer.onParameterSets(sps, pps);
  sendPicture(writer, 33, false);
  sendPicture(writer, 66, true);
  const auto plain = packets[1].data.bytes(), withSets = packets[2].data.bytes();
  EXPECT_EQ(plain.size(), film.packets.at(0).data.size());
  EXPECT_THAT(std::vector(withSets.begin(), withSets.begin() + 12),
              ElementsAre(0, 0, 0, 1, 0x67, 1, 0, 0, 0, 1, 0x68, 2));
  EXPECT_EQ(withSets.size(), plain.size() + 12);
}

TEST_F(StreamWriterTest, SoundOfAnUnknownKindIsAFault) {
  Writer writer(*this);
  sendHeaders(writer);
  writer.onAudioConfig(std::vector<std::uint8_t>{0xFF, 0xFF});
  sendPicture(writer, 0, true);
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(writer.written().fault, "the camera's sound is of an unknown kind");
  EXPECT_TRUE(begun.empty());
}

}  // namespace
}  // namespace zel
